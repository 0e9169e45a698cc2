// Type libraries as files, tables alone or in a module: a hostile one is refused, or all of it can be read.
#include <ole2.h>
#include <sys/mman.h>
#include <unistd.h>

#include "fuzz/support/Fuzz.h"
#include "platform/typelib/Resource.h"
#include "platform/typelib/TypeLib.h"

using namespace wnplatform::typelib;

namespace {

void Walk(ITypeInfo& type) {
    TYPEATTR* attributes = nullptr;
    wncom::fuzz::Expect(type.GetTypeAttr(&attributes) == S_OK, "a type has attributes");
    for (UINT i = 0; i < attributes->cFuncs; ++i) {
        FUNCDESC* function = nullptr;
        wncom::fuzz::Expect(type.GetFuncDesc(i, &function) == S_OK, "each function is described");
        BSTR names[kMostParameters + 1] = {};
        UINT count = 0;
        type.GetNames(function->memid, names, kMostParameters + 1, &count);
        for (UINT n = 0; n < count; ++n) SysFreeString(names[n]);
        for (SHORT p = 0; p < function->cParams; ++p) {
            const TYPEDESC* description = &function->lprgelemdescParam[p].tdesc;
            while (description->vt == VT_PTR) description = description->lptdesc;
        }
        type.ReleaseFuncDesc(function);
    }
    for (UINT i = 0; i < attributes->cImplTypes; ++i) {
        HREFTYPE reference = 0;
        ITypeInfo* referred = nullptr;
        if (type.GetRefTypeOfImplType(i, &reference) == S_OK && type.GetRefTypeInfo(reference, &referred) == S_OK) {
            referred->Release();
        }
    }
    type.ReleaseTypeAttr(attributes);
    OLECHAR name[] = OLESTR("a");
    LPOLESTR names[] = {name, name};
    MEMBERID ids[2];
    type.GetIDsOfNames(names, 2, ids);
    UINT index = 0;
    ITypeLib* owner = nullptr;
    if (type.GetContainingTypeLib(&owner, &index) == S_OK) owner->Release();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const int file = memfd_create("library", MFD_CLOEXEC);
    const auto length = static_cast<off_t>(size);
    wncom::fuzz::Expect(ftruncate(file, length) == 0 && pwrite(file, data, size, 0) == length, "a file is written");
    const std::optional<std::string> blob = ReadResource(file, size);
    std::optional<Tables> tables = blob ? Tables::FromBlob(*blob) : std::nullopt;
    if (!tables) return 0;
    const auto shared = std::make_shared<const Tables>(std::move(*tables));
    for (std::size_t i = 0; i < shared->libraries.size(); ++i) {
        ITypeLib* library = new TypeLib(shared, i);
        for (UINT index = 0; index < library->GetTypeInfoCount(); ++index) {
            ITypeInfo* type = nullptr;
            wncom::fuzz::Expect(library->GetTypeInfo(index, &type) == S_OK, "each type is there");
            Walk(*type);
            ITypeInfo* partner = nullptr;
            if (type->GetRefTypeInfo(0xFFFFFFFE, &partner) == S_OK) {
                Walk(*partner);
                partner->Release();
            }
            type->Release();
        }
        library->Release();
    }
    return 0;
}
