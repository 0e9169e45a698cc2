#include "platform/typelib/idl/Description.h"

#include "platform/typelib/idl/Parser.h"

namespace wnplatform::typelib {
namespace {

// What importlib("stdole2.tlb") brings in. Pointers to structures that nobody here looks into are void*.
constexpr std::string_view kStandard = R"(
[uuid(00020430-0000-0000-C000-000000000046), version(2.0), helpstring("OLE Automation")]
library stdole {
    [object, uuid(00000000-0000-0000-C000-000000000046), hidden]
    interface IUnknown {
        [restricted] HRESULT QueryInterface([in] void* riid, [out] void** ppvObj);
        [restricted] ULONG AddRef();
        [restricted] ULONG Release();
    };
    [object, uuid(00020400-0000-0000-C000-000000000046), restricted]
    interface IDispatch : IUnknown {
        [restricted] HRESULT GetTypeInfoCount([out] UINT* pctinfo);
        [restricted] HRESULT GetTypeInfo([in] UINT itinfo, [in] ULONG lcid, [out] void** pptinfo);
        [restricted] HRESULT GetIDsOfNames([in] void* riid, [in] void** rgszNames, [in] UINT cNames,
                                           [in] ULONG lcid, [out] long* rgdispid);
        [restricted] HRESULT Invoke([in] long dispidMember, [in] void* riid, [in] ULONG lcid, [in] USHORT wFlags,
                                    [in] void* pdispparams, [out] VARIANT* pvarResult, [out] void* pexcepinfo,
                                    [out] UINT* puArgErr);
    };
};
)";

}  // namespace

Tables Read(std::string_view text) {
    Tables tables;
    Parser(kStandard, tables).Parse();
    Parser(text, tables).Parse();
    return tables;
}

}  // namespace wnplatform::typelib
