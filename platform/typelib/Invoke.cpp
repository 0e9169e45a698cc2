#include "platform/typelib/Invoke.h"

#include <new>

#include "oleauto.h"
#include "platform/typelib/Argument.h"

namespace wnplatform::typelib {
namespace {

// What is passed beyond a method's own parameters it never looks at: callers clear the stack on these hosts.
constexpr std::size_t kWords = kMostParameters;

#if !defined(__x86_64__) && !defined(__aarch64__)
#error "How this host passes integers and pointers to a function has not been looked into."
#endif

HRESULT CallSlot(void* instance, unsigned slot, const std::uintptr_t (&w)[kWords]) noexcept {
    using Word = std::uintptr_t;
    using Function = HRESULT (*)(void*, Word, Word, Word, Word, Word, Word, Word, Word, Word);
    void** table = *static_cast<void***>(instance);
    const auto function = reinterpret_cast<Function>(table[slot]);
    try {
        return function(instance, w[0], w[1], w[2], w[3], w[4], w[5], w[6], w[7], w[8]);
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return E_UNEXPECTED;
    }
}

void Describe(HRESULT failure, EXCEPINFO& exception) noexcept {
    exception = EXCEPINFO{};
    exception.scode = failure;
    IErrorInfo* info = nullptr;
    if (GetErrorInfo(0, &info) != S_OK) return;
    info->GetSource(&exception.bstrSource);
    info->GetDescription(&exception.bstrDescription);
    info->GetHelpFile(&exception.bstrHelpFile);
    info->GetHelpContext(&exception.dwHelpContext);
    info->Release();
}

// Which of the caller's arguments goes to which parameter. They come last one first, the named ones before them all.
class Places {
public:
    HRESULT Assign(const MethodRow& method, std::size_t takes, const DISPPARAMS& params,
                   UINT* argumentError) noexcept {
        if (params.cNamedArgs > params.cArgs || (params.cArgs > 0 && !params.rgvarg) ||
            (params.cNamedArgs > 0 && !params.rgdispidNamedArgs)) {
            return E_INVALIDARG;
        }
        if (params.cArgs != takes) return DISP_E_BADPARAMCOUNT;
        const bool puts = (method.kind & (INVOKE_PROPERTYPUT | INVOKE_PROPERTYPUTREF)) != 0;
        if (puts && (params.cNamedArgs == 0 || params.rgdispidNamedArgs[0] != DISPID_PROPERTYPUT)) {
            return DISP_E_PARAMNOTFOUND;
        }
        const UINT positional = params.cArgs - params.cNamedArgs;
        for (UINT i = 0; i < positional; ++i) m_places[i] = static_cast<int>(params.cArgs - 1 - i);
        for (UINT i = 0; i < params.cNamedArgs; ++i) {
            const DISPID name = params.rgdispidNamedArgs[i];
            const std::size_t place = puts && name == DISPID_PROPERTYPUT ? takes - 1 : static_cast<std::size_t>(name);
            if (name != DISPID_PROPERTYPUT && name < 0) return Refuse(i, argumentError);
            if (place >= takes || m_places[place] >= 0) return Refuse(i, argumentError);
            m_places[place] = static_cast<int>(i);
        }
        return S_OK;
    }

    // The place among the caller's arguments; every parameter but a result has one.
    UINT Of(std::size_t parameter) const noexcept { return static_cast<UINT>(m_places[parameter]); }

private:
    static HRESULT Refuse(UINT argument, UINT* argumentError) noexcept {
        if (argumentError) *argumentError = argument;
        return DISP_E_PARAMNOTFOUND;
    }

    int m_places[kWords] = {-1, -1, -1, -1, -1, -1, -1, -1, -1};
};

}  // namespace

HRESULT InvokeMethod(const Tables& tables, const MethodRow& method, void* instance, const DISPPARAMS& params,
                     VARIANT* result, EXCEPINFO* exception, UINT* argumentError) noexcept {
    if (result) VariantInit(result);
    const std::size_t takes = method.parameterCount - (tables.HasResult(method) ? 1U : 0U);
    Places places;
    HRESULT hr = places.Assign(method, takes, params, argumentError);
    if (FAILED(hr)) return hr;

    Argument arguments[kWords];
    std::uintptr_t words[kWords] = {};
    for (std::size_t i = 0; i < method.parameterCount; ++i) {
        const ParameterRow& parameter = tables.ParametersOf(method)[i];
        hr = i < takes ? arguments[i].Prepare(tables, parameter, params.rgvarg[places.Of(i)])
                       : arguments[i].PrepareResult(tables, parameter);
        if (FAILED(hr)) {
            if (i < takes && argumentError) *argumentError = places.Of(i);
            return hr;
        }
        words[i] = arguments[i].Word();
    }

    hr = CallSlot(instance, method.slot, words);
    if (FAILED(hr)) {
        if (exception) Describe(hr, *exception);
        return DISP_E_EXCEPTION;
    }
    if (result && takes < method.parameterCount) arguments[takes].MoveTo(*result);
    return hr;
}

}  // namespace wnplatform::typelib
