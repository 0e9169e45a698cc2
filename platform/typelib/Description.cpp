#include "platform/typelib/Description.h"

#include <algorithm>

#include "platform/com/GuidText.h"
#include "platform/typelib/Checker.h"
#include "platform/typelib/Parser.h"

namespace wnplatform::typelib {
namespace {

// Pointers to structures that nobody of ours looks into are void* here.
constexpr std::string_view kStandard = R"(
[uuid(00020430-0000-0000-C000-000000000046), version(2.0), helpstring("OLE Automation")]
library stdole {
    [object, uuid(00000000-0000-0000-C000-000000000046), hidden]
    interface IUnknown {
        [restricted] HRESULT QueryInterface([in] void* riid, [out] void** ppvObj);
        [restricted] unsigned long AddRef();
        [restricted] unsigned long Release();
    };
    [object, uuid(00020400-0000-0000-C000-000000000046), restricted]
    interface IDispatch : IUnknown {
        [restricted] HRESULT GetTypeInfoCount([out] unsigned int* pctinfo);
        [restricted] HRESULT GetTypeInfo([in] unsigned int itinfo, [in] unsigned long lcid, [out] void** pptinfo);
        [restricted] HRESULT GetIDsOfNames([in] void* riid, [in] void** rgszNames, [in] unsigned int cNames,
                                           [in] unsigned long lcid, [out] long* rgdispid);
        [restricted] HRESULT Invoke([in] long dispidMember, [in] void* riid, [in] unsigned long lcid,
                                    [in] unsigned short wFlags, [in] void* pdispparams, [out] VARIANT* pvarResult,
                                    [out] void* pexcepinfo, [out] unsigned int* puArgErr);
    };
};
)";

std::unique_ptr<const Library> ReadStandard() {
    std::unique_ptr<Library> library = Parser(kStandard).Parse();
    Checker(*library, nullptr).Check();
    for (Library::TypeEntry& entry : library->types) entry.interface_->imported = true;
    return library;
}

}  // namespace

std::unique_ptr<const Library> Read(std::string_view text) {
    std::unique_ptr<Library> library = Parser(text).Parse();
    Checker(*library, library->importsStandard ? &Standard() : nullptr).Check();
    return library;
}

const Library& Standard() {
    // Left to the end of the process: objects of other modules may ask for it while statics are taken down.
    static const Library& library = *ReadStandard().release();
    return library;
}

std::string TypeText(const Type& type) {
    const unsigned pointers = type.pointers + (type.vt == VT_UNKNOWN || type.vt == VT_DISPATCH ? 1 : 0);
    return type.name + std::string(pointers, '*');
}

std::string GuidText(const GUID& guid) {
    const auto text = TextOfGuid(guid);
    return std::string(text.data() + 1, text.size() - 2);
}

bool SameName(std::string_view a, std::string_view b) noexcept {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [&](char x, char y) { return lower(x) == lower(y); });
}

}  // namespace wnplatform::typelib
