#include "platform/com/ClassServers.h"

#include <map>
#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/com/GuidText.h"
#include "platform/registry/Registry.h"
#include "platform/text/Texts.h"

namespace wnplatform {

using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, LPVOID*);
using CanUnloadNow = HRESULT(STDAPICALLTYPE*)();

// Owns one load of a module, which keeps its code in the process.
struct ModuleReleaser {
    using pointer = HMODULE;
    void operator()(HMODULE module) const noexcept { FreeLibrary(module); }
};
using ModuleOwner = std::unique_ptr<HMODULE, ModuleReleaser>;

struct ClassServer {
    ModuleOwner module;
    GetClassObject getClassObject = nullptr;
    CanUnloadNow canUnloadNow = nullptr;  // null: never unloaded
};

namespace {

struct GuidHash {
    std::size_t operator()(REFGUID guid) const noexcept {
        std::size_t parts[2];
        static_assert(sizeof parts == sizeof guid);
        std::memcpy(parts, &guid, sizeof guid);
        return parts[0] ^ parts[1];
    }
};

// Servers by the path they are registered with, and by the classes that were asked for since the registry last
// changed. Whoever uses a server shares it, so that it cannot be unloaded under a call into it.
struct Table {
    std::mutex mutex;
    std::map<std::string, HeldServer> byPath;
    std::unordered_map<GUID, HeldServer, GuidHash> byClass;
    std::uint64_t registryVersion = 0;
};

// Never destroyed: objects that end with the process may still ask.
Table& TheTable() {
    static Table* const table = new Table;
    return *table;
}

// A function of the module, null when it exports none of that name. What its type is, only the name says.
template <class Function>
Function Export(HMODULE module, LPCSTR name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

HRESULT Load(const std::string& path, HeldServer& server) {
    ModuleOwner module(LoadLibraryExA(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
    if (!module) return HRESULT_FROM_WIN32(GetLastError());
    const auto getClassObject = Export<GetClassObject>(module.get(), "DllGetClassObject");
    if (!getClassObject) return CO_E_ERRORINDLL;
    const auto canUnloadNow = Export<CanUnloadNow>(module.get(), "DllCanUnloadNow");
    server = std::make_shared<const ClassServer>(ClassServer{std::move(module), getClassObject, canUnloadNow});
    return S_OK;
}

std::string RegisteredPath(REFCLSID clsid) {
    const auto id = TextOfGuid(clsid);
    const std::string key = "CLSID\\" + std::string(id.data(), id.size()) + "\\InprocServer32";
    const std::string path = ReadRegistryText(HKEY_CLASSES_ROOT, key, "").value_or(std::string());
    return IsAscii(path) ? path : NarrowFromUtf8(path);
}

HRESULT FindServer(REFCLSID clsid, HeldServer& server) {
    Table& table = TheTable();
    const std::uint64_t version = RegistryVersion();
    std::unique_lock lock(table.mutex);
    if (table.registryVersion != version) {
        table.byClass.clear();
        table.registryVersion = version;
    }
    if (const auto found = table.byClass.find(clsid); found != table.byClass.end()) {
        server = found->second;
        return S_OK;
    }
    lock.unlock();

    const std::string path = RegisteredPath(clsid);
    if (path.empty()) return REGDB_E_CLASSNOTREG;
    lock.lock();
    if (const auto found = table.byPath.find(path); found != table.byPath.end()) {
        server = found->second;
    } else {
        // The module's start may itself create objects, so it runs without the lock.
        lock.unlock();
        if (const HRESULT hr = Load(path, server); FAILED(hr)) return hr;
        lock.lock();
        server = table.byPath.emplace(path, server).first->second;
    }
    // What was looked up in an older state of the registry must not outlive it.
    if (table.registryVersion == version) table.byClass.emplace(clsid, server);
    return S_OK;
}

}  // namespace

HRESULT GetServerClassObject(REFCLSID clsid, REFIID iid, HeldServer& server, void** object) {
    if (const HRESULT hr = FindServer(clsid, server); FAILED(hr)) return hr;
    const HRESULT hr = server->getClassObject(clsid, iid, object);
    return SUCCEEDED(hr) && !*object ? E_NOINTERFACE : hr;
}

void UnloadIdleServers() noexcept try {
    // Their modules are freed without the lock: a module's end may run code of any kind.
    std::vector<HeldServer> idle;
    Table& table = TheTable();
    const std::unique_lock lock(table.mutex);
    table.byClass.clear();
    for (auto entry = table.byPath.begin(); entry != table.byPath.end();) {
        const ClassServer& server = *entry->second;
        // One owner: no call into the server is on its way.
        const bool unload = entry->second.use_count() == 1 && server.canUnloadNow && server.canUnloadNow() == S_OK;
        if (unload) idle.push_back(std::move(entry->second));
        entry = unload ? table.byPath.erase(entry) : std::next(entry);
    }
} catch (...) {
    // What could not be taken out stays loaded.
}

}  // namespace wnplatform
