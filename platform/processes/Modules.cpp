#include <dlfcn.h>
#include <link.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/core/Errors.h"
#include "platform/core/Guarded.h"
#include "platform/files/Paths.h"
#include "platform/processes/ModuleFiles.h"
#include "platform/text/CaseFold.h"
#include "winbase.h"
#include "wnplatform/module_start.h"

using namespace wnplatform;

namespace {

// A module's handle is the address it starts at. The layer counts the loads that were asked of it; each is one of the
// dynamic linker's own, so that its count decides when the module leaves.
struct Loads {
    void* linkerHandle;
    std::size_t count;
};

// The lock is never held across a call of the dynamic linker, which runs the modules' own code.
struct Table {
    std::mutex mutex;
    std::map<HMODULE, Loads> modules;

    void Add(HMODULE module, void* linkerHandle) {
        const std::lock_guard lock(mutex);
        ++modules.try_emplace(module, Loads{linkerHandle, 0}).first->second.count;
    }
    // The linker's handle of a load that is to be undone; null when the layer holds none.
    void* Take(HMODULE module) {
        const std::lock_guard lock(mutex);
        const auto found = modules.find(module);
        if (found == modules.end()) return nullptr;
        void* const handle = found->second.linkerHandle;
        if (--found->second.count == 0) modules.erase(found);
        return handle;
    }
};

// Never destroyed: modules may still be freed while the process ends.
Table& TheTable() {
    static Table* const table = new Table;
    return *table;
}

thread_local bool t_startRefused = false;

// Undoes one of the linker's loads.
struct LinkerRelease {
    void operator()(void* handle) const noexcept { dlclose(handle); }
};
using LinkerHandle = std::unique_ptr<void, LinkerRelease>;

// The module that an address lies in, and the path the linker knows it by; null for no module.
HMODULE ModuleAt(const void* address, const char** path = nullptr) {
    Dl_info info;
    if (dladdr(address, &info) == 0 || !info.dli_fname) return nullptr;
    if (path) *path = info.dli_fname;
    return static_cast<HINSTANCE>(info.dli_fbase);
}

// The linker fills its record in under its own lock before it hands out any handle to it; the thread sanitizer does
// not see that lock.
__attribute__((no_sanitize("thread"), noinline)) const void* DynamicSection(const link_map& map) { return map.l_ld; }

HMODULE ModuleOf(void* linkerHandle) {
    link_map* map = nullptr;
    if (dlinfo(linkerHandle, RTLD_DI_LINKMAP, &map) != 0) return nullptr;
    return ModuleAt(DynamicSection(*map));
}

// The running program, whatever words it was started with.
HMODULE Program() {
    static const HMODULE program = [] {
        const LinkerHandle handle(dlopen(nullptr, RTLD_LAZY));
        return ModuleOf(handle.get());
    }();
    return program;
}

// The path the linker knows a handle's module by; null when the handle is none.
const char* LinkerPath(HMODULE module) {
    const char* path = nullptr;
    return module && ModuleAt(module, &path) == module ? path : nullptr;
}

// One more load of a module that is in the process; null when it is not.
LinkerHandle LoadAgain(HMODULE module) {
    const char* const path = LinkerPath(module);
    if (!path) return nullptr;
    return LinkerHandle(module == Program() ? dlopen(nullptr, RTLD_LAZY) : dlopen(path, RTLD_LAZY | RTLD_NOLOAD));
}

bool NamesTheSame(std::string_view path, std::string_view name) {
    return CompareNames(path.substr(path.rfind('/') + 1), name) == 0;
}

// The module that a name without a folder means when it has been loaded already, wherever from.
HMODULE FindLoaded(std::string_view name) {
    std::vector<HMODULE> loaded;
    {
        Table& table = TheTable();
        const std::lock_guard lock(table.mutex);
        for (const auto& [module, loads] : table.modules) loaded.push_back(module);
    }
    for (const HMODULE module : loaded) {
        const char* const path = LinkerPath(module);
        if (path && NamesTheSame(path, name)) return module;
    }
    return nullptr;
}

HMODULE Keep(LinkerHandle handle) {
    const HMODULE module = ModuleOf(handle.get());
    TheTable().Add(module, handle.get());
    handle.release();
    return module;
}

HMODULE FailLoad(DWORD code) {
    SetLastError(code);
    return nullptr;
}

HMODULE Load(const char* path) {
    const std::string name = ModuleFileName(path);
    if (IsBareName(name)) {
        if (LinkerHandle again = LoadAgain(FindLoaded(name))) return Keep(std::move(again));
    }
    const std::string file = FindModuleFile(name);
    if (file.empty()) return FailLoad(ERROR_MOD_NOT_FOUND);
    if (const DWORD error = CheckModuleFile(file); error != ERROR_SUCCESS) return FailLoad(error);

    // A module's start may load others, each with an answer of its own.
    const bool outer = std::exchange(t_startRefused, false);
    LinkerHandle handle(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL));
    const bool refused = std::exchange(t_startRefused, outer);
    if (!handle) {
        const char* const text = dlerror();
        return FailLoad(ErrorFromLinker(text ? text : ""));
    }
    return refused ? FailLoad(ERROR_DLL_INIT_FAILED) : Keep(std::move(handle));
}

HMODULE FindByName(const char* path) {
    const std::string name = ModuleFileName(path);
    if (IsBareName(name)) {
        if (const HMODULE loaded = FindLoaded(name)) return loaded;
    }
    const std::string file = FindModuleFile(name);
    if (file.empty()) return nullptr;
    const LinkerHandle handle(dlopen(file.c_str(), RTLD_LAZY | RTLD_NOLOAD));
    return handle ? ModuleOf(handle.get()) : nullptr;
}

// The host's path of a module; empty for a handle that is none.
std::string PathOf(HMODULE module) {
    const char* const known = LinkerPath(module ? module : Program());
    if (!known) return {};
    const bool isProgram = !module || module == Program();
    return isProgram ? std::filesystem::read_symlink("/proc/self/exe").string() : std::string(known);
}

}  // namespace

namespace wnplatform {

void RefuseStart() noexcept { t_startRefused = true; }

}  // namespace wnplatform

HMODULE LoadLibraryExA(LPCSTR path, HANDLE reserved, DWORD flags) {
    if (!path || !*path || reserved || (flags & ~DWORD{LOAD_WITH_ALTERED_SEARCH_PATH}) != 0) {
        return FailLoad(ERROR_INVALID_PARAMETER);
    }
    return Guarded(nullptr, [path] { return Load(path); });
}

HMODULE LoadLibraryA(LPCSTR path) { return LoadLibraryExA(path, nullptr, 0); }

BOOL FreeLibrary(HMODULE module) {
    if (module && module == Program()) return TRUE;
    const LinkerHandle handle(TheTable().Take(module));
    return handle ? TRUE : Fail(ERROR_MOD_NOT_FOUND);
}

FARPROC GetProcAddress(HMODULE module, LPCSTR name) {
    const HMODULE wanted = module ? module : Program();
    const LinkerHandle handle = LoadAgain(wanted);
    if (!handle) {
        SetLastError(ERROR_MOD_NOT_FOUND);
        return nullptr;
    }
    // Numbers in place of names, as some exports have elsewhere, do not exist here.
    const bool isName = reinterpret_cast<std::uintptr_t>(name) > 0xFFFF;
    void* const address = isName ? dlsym(handle.get(), name) : nullptr;
    // The linker also looks into the modules that this one needs.
    if (!address || ModuleAt(address) != wanted) {
        SetLastError(ERROR_PROC_NOT_FOUND);
        return nullptr;
    }
    return reinterpret_cast<FARPROC>(address);
}

DWORD GetModuleFileNameA(HMODULE module, LPSTR path, DWORD size) {
    if (!path || size == 0) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    return Guarded(DWORD{0}, [=]() -> DWORD {
        const std::string full = ReportedPath(PathOf(module));
        if (full.empty()) {
            SetLastError(ERROR_MOD_NOT_FOUND);
            return 0;
        }
        const std::size_t copied = std::min<std::size_t>(full.size(), size - 1);
        std::memcpy(path, full.data(), copied);
        path[copied] = '\0';
        if (copied == full.size()) return static_cast<DWORD>(copied);
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return size;
    });
}

BOOL GetModuleHandleExA(DWORD flags, LPCSTR nameOrAddress, HMODULE* module) {
    constexpr DWORD known = GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS;
    const bool fromAddress = (flags & GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS) != 0;
    if (!module) return Fail(ERROR_INVALID_PARAMETER);
    *module = nullptr;
    if ((flags & ~known) != 0 || (fromAddress && !nameOrAddress)) return Fail(ERROR_INVALID_PARAMETER);
    return Guarded(FALSE, [=]() -> BOOL {
        HMODULE found = Program();
        if (fromAddress) {
            found = ModuleAt(nameOrAddress);
        } else if (nameOrAddress) {
            found = FindByName(nameOrAddress);
        }
        if (!found) return Fail(ERROR_MOD_NOT_FOUND);
        if ((flags & GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT) == 0 && found != Program()) {
            LinkerHandle again = LoadAgain(found);
            if (!again) return Fail(ERROR_MOD_NOT_FOUND);
            Keep(std::move(again));
        }
        *module = found;
        return TRUE;
    });
}

BOOL DisableThreadLibraryCalls(HMODULE module) { return LinkerPath(module) ? TRUE : Fail(ERROR_INVALID_HANDLE); }
