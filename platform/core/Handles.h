// The kernel objects of the process and the handles that name them.
#pragma once

#include <cstdint>
#include <memory>
#include <type_traits>

#include "winbase.h"

namespace wnplatform {

enum class ObjectKind : std::uint8_t { File, Mutex, Process, Thread, Search };

// What a handle stands for. An object is destroyed when its handle is closed and no call is using it any more.
class KernelObject {
public:
    explicit KernelObject(ObjectKind itsKind) noexcept : kind(itsKind) {}
    KernelObject(const KernelObject&) = delete;
    KernelObject& operator=(const KernelObject&) = delete;
    virtual ~KernelObject() = default;

    // As WaitForSingleObject; objects that are never waited for refuse.
    virtual DWORD Wait(DWORD milliseconds) noexcept;

    const ObjectKind kind;
};

// A new handle that owns the object; throws std::bad_alloc, also when the table is full.
HANDLE AddObject(std::unique_ptr<KernelObject> object);

// Closes a handle of one of the kinds that the predicate accepts; otherwise ERROR_INVALID_HANDLE.
BOOL CloseObject(HANDLE handle, bool (*accepts)(ObjectKind)) noexcept;

// The object behind an open handle, kept alive until it is released; null for any other value.
KernelObject* AcquireObject(HANDLE handle) noexcept;
void ReleaseObject(HANDLE handle) noexcept;

// The object behind a handle for the length of one call. Without one of the kind T the last error is
// ERROR_INVALID_HANDLE.
template <class T>
class ObjectUse {
public:
    explicit ObjectUse(HANDLE handle) noexcept : m_handle(handle), m_object(AcquireObject(handle)) {
        if constexpr (!std::is_same_v<T, KernelObject>) {
            if (m_object && m_object->kind != T::kKind) {
                ReleaseObject(m_handle);
                m_object = nullptr;
            }
        }
        if (!m_object) SetLastError(ERROR_INVALID_HANDLE);
    }
    ObjectUse(const ObjectUse&) = delete;
    ObjectUse& operator=(const ObjectUse&) = delete;
    ~ObjectUse() {
        if (m_object) ReleaseObject(m_handle);
    }

    explicit operator bool() const noexcept { return m_object != nullptr; }
    T* operator->() const noexcept { return static_cast<T*>(m_object); }
    T& operator*() const noexcept { return *static_cast<T*>(m_object); }

private:
    HANDLE m_handle;
    KernelObject* m_object;
};

}  // namespace wnplatform
