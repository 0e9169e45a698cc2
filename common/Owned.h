// Owners of what the system hands out and wants back: open handles, searches, modules.
#pragma once

#include <windows.h>

#include <utility>

namespace wncom {

// Owns one handle, or none, and gives it back at its end. Null and INVALID_HANDLE_VALUE are both none.
template <class Handle, class GiveBack>
class Owned {
public:
    Owned() noexcept = default;
    explicit Owned(Handle handle) noexcept { reset(handle); }
    Owned(Owned&& other) noexcept : m_handle(other.detach()) {}
    Owned& operator=(Owned&& other) noexcept {
        if (this != &other) reset(other.detach());
        return *this;
    }
    ~Owned() { reset(); }

    Handle get() const noexcept { return m_handle; }
    explicit operator bool() const noexcept { return m_handle != Handle(); }

    // Gives back what is held and takes over another handle.
    void reset(Handle handle = Handle()) noexcept {
        if (m_handle) GiveBack()(m_handle);
        m_handle = static_cast<void*>(handle) == INVALID_HANDLE_VALUE ? Handle() : handle;
    }
    // For an out-parameter: gives back what is held and gives the place for a new handle.
    Handle* put() noexcept {
        reset();
        return &m_handle;
    }
    // Hands the handle over to the caller.
    Handle detach() noexcept { return std::exchange(m_handle, Handle()); }

private:
    Handle m_handle = Handle();
};

struct GiveBackHandle {
    void operator()(HANDLE handle) const noexcept { CloseHandle(handle); }
};
struct GiveBackSearch {
    void operator()(HANDLE search) const noexcept { FindClose(search); }
};
struct GiveBackModule {
    void operator()(HMODULE module) const noexcept { FreeLibrary(module); }
};

// A file, a mutex, a process.
using OwnedHandle = Owned<HANDLE, GiveBackHandle>;
// What FindFirstFileA began.
using OwnedSearch = Owned<HANDLE, GiveBackSearch>;
using OwnedModule = Owned<HMODULE, GiveBackModule>;

}  // namespace wncom
