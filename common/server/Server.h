// What every COM server module of this tree is built on: its description, its lock count, its entry points.
//
// A module compiles Exports.cpp into itself and defines kServer; from that table follow its class objects, its
// registration entries and its type library.
#pragma once

#include <windows.h>

#include <ole2.h>

#include <span>

namespace wncom::server {

// One creatable class. Texts are narrow literals.
struct ServedClass {
    CLSID clsid;
    const char* name;  // for people, such as "Wendrel Class"
    const char* progId;
    // May equal progId: then all rows of both land in that one key.
    const char* versionIndependentProgId;
    // Makes an object, aggregated when there is an outer one, and asks it for the interface.
    HRESULT (*create)(IUnknown* outer, REFIID iid, void** object);
};

struct ServerDescription {
    std::span<const ServedClass> classes;  // at most 16, in the order of registration
    GUID libraryId;                        // the type library, resource number 1 of the module
    WORD libraryMajor;
    WORD libraryMinor;
};

// The locale of the type library: English, United States.
inline constexpr LCID kLibraryLocale = 0x409;

// Defined once by each module.
extern const ServerDescription kServer;

// The module's own handle; set while the module is loaded.
HMODULE ModuleHandle() noexcept;

// One lock on the module: held by each object for its life and by IClassFactory::LockServer. The count changes
// atomically; the module may be unloaded while it is 0.
void AddModuleLock() noexcept;
void ReleaseModuleLock() noexcept;

class ModuleLock {
public:
    ModuleLock() noexcept { AddModuleLock(); }
    ModuleLock(const ModuleLock&) = delete;
    ModuleLock& operator=(const ModuleLock&) = delete;
    ~ModuleLock() { ReleaseModuleLock(); }
};

// Writes or removes the registration entries of every class in turn, then the type library's. The first failure
// stops the sequence and is returned.
HRESULT RegisterServer() noexcept;
HRESULT UnregisterServer() noexcept;

// The class object of one class of kServer; the same one for the life of the module.
HRESULT GetClassObject(REFCLSID clsid, REFIID iid, void** object) noexcept;

}  // namespace wncom::server
