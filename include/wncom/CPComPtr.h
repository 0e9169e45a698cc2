// The smart pointer that owns one interface reference of a component and creates the component by its ProgID.
#pragma once

#include <windows.h>

#include <ole2.h>

#include <utility>

namespace wncom {

// Creates the component that a ProgID names and asks it for an interface; an unknown ProgID is first registered
// from the module file when one is given (null: no registration is tried). Runs on the calling thread, which must
// have initialised COM. What the object's place holds is released first. On failure the object is null and the
// status that of the step that failed; E_POINTER when a server claims success but gives no object.
HRESULT CreateComponentInstance(LPCOLESTR progId, LPCOLESTR moduleFile, REFIID iid, void** object) noexcept;

// Registers or unregisters a component module: the entry point of a ".dll", the command-line switch of an ".exe",
// waited for at most 3.5 seconds; any other existing file answers S_OK and nothing is done. The path is used as it
// is; E_FAIL when no file has it.
HRESULT RegisterComponentModule(LPCOLESTR modulePath, bool registerModule) noexcept;

// Owns one reference to an interface T, or null. T names its interface id as T::kIid.
template <class T>
class CPComPtr {
public:
    CPComPtr() noexcept = default;
    CPComPtr(std::nullptr_t) noexcept {}
    // Adds a reference of its own.
    explicit CPComPtr(T* object) noexcept : m_object(object) {
        if (m_object) m_object->AddRef();
    }
    CPComPtr(const CPComPtr& other) noexcept : CPComPtr(other.m_object) {}
    CPComPtr(CPComPtr&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    CPComPtr& operator=(CPComPtr other) noexcept {
        std::swap(m_object, other.m_object);
        return *this;
    }
    ~CPComPtr() { Release(); }

    T* get() const noexcept { return m_object; }
    T* operator->() const noexcept { return m_object; }
    explicit operator bool() const noexcept { return m_object != nullptr; }

    void Release() noexcept {
        if (T* object = std::exchange(m_object, nullptr)) object->Release();
    }
    // For an out-parameter: releases what is held and gives the place for a new reference.
    T** put() noexcept {
        Release();
        return &m_object;
    }
    void** put_void() noexcept { return reinterpret_cast<void**>(put()); }
    // Takes over a reference that the caller owns.
    void attach(T* object) noexcept {
        Release();
        m_object = object;
    }
    // Hands the reference over to the caller.
    T* detach() noexcept { return std::exchange(m_object, nullptr); }
    // Adds a reference for the caller and stores the pointer; null, and no reference, when nothing is held.
    void copy_to(T** place) const noexcept {
        if (m_object) m_object->AddRef();
        *place = m_object;
    }

    // Asks the object for another interface and owns the reference that it adds; the result is empty on failure.
    // E_POINTER when nothing is held. Lets through what the object throws.
    template <class U>
    HRESULT QueryInterface(CPComPtr<U>& other) const {
        void** place = other.put_void();
        const HRESULT status = m_object ? m_object->QueryInterface(U::kIid, place) : E_POINTER;
        // What a failed query left there is nobody's reference.
        if (FAILED(status)) *place = nullptr;
        return status;
    }

    // The same for callers that do not need the status.
    template <class U>
    CPComPtr<U> query() const {
        CPComPtr<U> other;
        static_cast<void>(QueryInterface(other));
        return other;
    }

    // Releases what is held and creates the component that the ProgID names; empty after a failure. See
    // CreateComponentInstance.
    HRESULT CreateInstance(LPCOLESTR progId, LPCOLESTR moduleFile = nullptr) noexcept {
        return CreateComponentInstance(progId, moduleFile, T::kIid, reinterpret_cast<void**>(&m_object));
    }
    static HRESULT RegisterComponent(LPCOLESTR modulePath, bool registerModule) noexcept {
        return RegisterComponentModule(modulePath, registerModule);
    }

private:
    T* m_object = nullptr;
};

}  // namespace wncom
