// Self-registration: the same rows for every class, from one table.
#include <windows.h>

#include <oleauto.h>

#include <iterator>
#include <string>
#include <utility>

#include "common/CodePageText.h"
#include "common/Guard.h"
#include "common/OpenKey.h"
#include "common/server/Server.h"
#include "wncom/Bstr.h"
#include "wncom/CPComPtr.h"

namespace wncom::server {
namespace {

// What stands behind a row's data, or in its key's first component.
enum class Text { None, ClassName, ProgId, VersionIndependentProgId, ClassId, LibraryId, ModulePath, Apartment };

enum class Root { ProgIdKey, VersionIndependentKey, ClassIdKey };

struct Row {
    Root root;
    const char* subkey;     // below the root; empty for the root itself
    const char* valueName;  // null for the default value
    Text data;              // None: the key alone
};

constexpr Row kRows[] = {
    {Root::ProgIdKey, "", nullptr, Text::ClassName},
    {Root::ProgIdKey, "CLSID", nullptr, Text::ClassId},
    {Root::VersionIndependentKey, "", nullptr, Text::ClassName},
    {Root::VersionIndependentKey, "CLSID", nullptr, Text::ClassId},
    {Root::VersionIndependentKey, "CurVer", nullptr, Text::ProgId},
    {Root::ClassIdKey, "", nullptr, Text::ClassName},
    {Root::ClassIdKey, "ProgID", nullptr, Text::ProgId},
    {Root::ClassIdKey, "VersionIndependentProgID", nullptr, Text::VersionIndependentProgId},
    {Root::ClassIdKey, "Programmable", nullptr, Text::None},
    {Root::ClassIdKey, "InprocServer32", nullptr, Text::ModulePath},
    {Root::ClassIdKey, "InprocServer32", "ThreadingModel", Text::Apartment},
    {Root::ClassIdKey, "TypeLib", nullptr, Text::LibraryId},
};

std::string GuidText(REFGUID guid) {
    OLECHAR wide[39];
    const int units = StringFromGUID2(guid, wide, static_cast<int>(std::size(wide)));
    return std::string(wide, wide + (units > 0 ? units - 1 : 0));
}

// The module's file in the narrow code page; empty when the system does not tell.
std::string ModulePath() {
    std::string path(MAX_PATH, '\0');
    for (;;) {
        const DWORD length = GetModuleFileNameA(ModuleHandle(), path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) return path.substr(0, length);
        path.resize(path.size() * 2);
    }
}

std::string RootKey(const ServedClass& served, Root root) {
    switch (root) {
        case Root::ProgIdKey:
            return served.progId;
        case Root::VersionIndependentKey:
            return served.versionIndependentProgId;
        case Root::ClassIdKey:
            return "CLSID\\" + GuidText(served.clsid);
    }
    return {};
}

std::string DataOf(const ServedClass& served, Text text) {
    switch (text) {
        case Text::None:
            return {};
        case Text::ClassName:
            return served.name;
        case Text::ProgId:
            return served.progId;
        case Text::VersionIndependentProgId:
            return served.versionIndependentProgId;
        case Text::ClassId:
            return GuidText(served.clsid);
        case Text::LibraryId:
            return GuidText(kServer.libraryId);
        case Text::ModulePath:
            return ModulePath();
        case Text::Apartment:
            return "Apartment";
    }
    return {};
}

LSTATUS WriteRow(const ServedClass& served, const Row& row) {
    std::string key = RootKey(served, row.root);
    if (*row.subkey) key = key + "\\" + row.subkey;
    OpenKey opened;
    const LSTATUS status = opened.Create(HKEY_CLASSES_ROOT, key.c_str(), KEY_WRITE);
    if (status != ERROR_SUCCESS || row.data == Text::None) return status;
    return opened.WriteText(row.valueName, DataOf(served, row.data));
}

// A key that is not there is as good as removed.
LSTATUS DeleteKey(const std::string& key) {
    const LSTATUS status = RegDeleteTreeA(HKEY_CLASSES_ROOT, key.c_str());
    return status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status;
}

HRESULT Register(const ServedClass& served) {
    // What an earlier registration of another build left in the class's own key must not survive beside this one's.
    LSTATUS status = DeleteKey(RootKey(served, Root::ClassIdKey));
    for (const Row& row : kRows) {
        if (status != ERROR_SUCCESS) break;
        status = WriteRow(served, row);
    }
    return HRESULT_FROM_WIN32(status);
}

HRESULT Unregister(const ServedClass& served) {
    for (const Root root : {Root::ProgIdKey, Root::VersionIndependentKey, Root::ClassIdKey}) {
        if (const LSTATUS status = DeleteKey(RootKey(served, root)); status != ERROR_SUCCESS) {
            return HRESULT_FROM_WIN32(status);
        }
    }
    return S_OK;
}

// The library as the module's own file holds it, and where that file is.
HRESULT OwnTypeLibrary(CPComPtr<ITypeLib>& library, Bstr& path) {
    path = WidenToBstr(CP_ACP, ModulePath());
    return LoadTypeLib(path.get(), library.put());
}

HRESULT RegisterTypeLibrary() {
    CPComPtr<ITypeLib> library;
    Bstr path;
    const HRESULT status = OwnTypeLibrary(library, path);
    return FAILED(status) ? status : RegisterTypeLib(library.get(), path.get(), nullptr);
}

HRESULT UnregisterTypeLibrary() {
    CPComPtr<ITypeLib> library;
    Bstr path;
    if (const HRESULT status = OwnTypeLibrary(library, path); FAILED(status)) return status;
    TLIBATTR* attributes = nullptr;
    if (const HRESULT status = library->GetLibAttr(&attributes); FAILED(status)) return status;
    const TLIBATTR copy = *attributes;
    library->ReleaseTLibAttr(attributes);
    return UnRegisterTypeLib(copy.guid, copy.wMajorVerNum, copy.wMinorVerNum, copy.lcid, copy.syskind);
}

template <class Step, class Last>
HRESULT ForEachClass(Step step, Last last) noexcept {
    return Guarded([&]() -> HRESULT {
        for (const ServedClass& served : kServer.classes) {
            if (const HRESULT status = step(served); FAILED(status)) return status;
        }
        return last();
    });
}

}  // namespace

HRESULT RegisterServer() noexcept { return ForEachClass(Register, RegisterTypeLibrary); }

HRESULT UnregisterServer() noexcept { return ForEachClass(Unregister, UnregisterTypeLibrary); }

}  // namespace wncom::server
