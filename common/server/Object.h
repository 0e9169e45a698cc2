// How a class becomes a COM object: reference count, interface lookup, aggregation, module lock.
//
// An implementation class derives from its interfaces, leaves the IUnknown methods open and offers
//     void* FindInterface(REFIID iid) noexcept;   // no reference added; null for an interface it lacks
// CreateObject<T> makes the object. Counts are plain: objects live in single-threaded apartments.
#pragma once

#include <windows.h>

#include <ole2.h>

#include <memory>

#include "common/server/Server.h"

namespace wncom::server {

// The interface of the class that iid names; null when the class does not have it.
template <class... Interfaces, class Self>
void* FindAmong(Self* self, REFIID iid) noexcept {
    void* found = nullptr;
    static_cast<void>(((iid == Interfaces::kIid && (found = static_cast<Interfaces*>(self))) || ...));
    return found;
}

namespace detail {

// While a destructor runs, the references that it takes and gives back must not bring the count to 0 again.
inline constexpr ULONG kDestroying = 0x40000000;

template <class T>
HRESULT Answer(T* object, void* found, void** out) noexcept {
    *out = found;
    if (!found) return E_NOINTERFACE;
    object->AddRef();
    return S_OK;
}

// Stands by itself: it is its own IUnknown.
template <class Implementation>
class StandaloneObject final : private ModuleLock, public Implementation {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (!object) return E_POINTER;
        return Answer(this, this->FindInterface(iid), object);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override {
        if (--m_references != 0) return m_references;
        m_references = kDestroying;
        delete this;
        return 0;
    }

private:
    ULONG m_references = 0;
};

// Lives inside an outer object: its interfaces' IUnknown is the outer object's, its own is the inner one here.
template <class Implementation>
class AggregatedObject final : private ModuleLock, public IUnknown {
public:
    explicit AggregatedObject(IUnknown* outer) : m_contained(outer) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (!object) return E_POINTER;
        if (iid == IID_IUnknown) return Answer(this, static_cast<IUnknown*>(this), object);
        return Answer(&m_contained, m_contained.FindInterface(iid), object);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override {
        if (--m_references != 0) return m_references;
        m_references = kDestroying;
        delete this;
        return 0;
    }

private:
    class Contained final : public Implementation {
    public:
        explicit Contained(IUnknown* outer) : m_outer(outer) {}

        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
            return m_outer->QueryInterface(iid, object);
        }
        ULONG STDMETHODCALLTYPE AddRef() override { return m_outer->AddRef(); }
        ULONG STDMETHODCALLTYPE Release() override { return m_outer->Release(); }

    private:
        IUnknown* m_outer;  // no reference: the outer object owns this one
    };

    Contained m_contained;
    ULONG m_references = 0;
};

// The count goes up before the query, so that a refused query destroys the object.
template <class Object>
HRESULT HandOut(Object* object, REFIID iid, void** out) {
    object->AddRef();
    const HRESULT status = object->QueryInterface(iid, out);
    object->Release();
    return status;
}

}  // namespace detail

// For a ServedClass's create. May throw what the constructor throws.
template <class Implementation>
HRESULT CreateObject(IUnknown* outer, REFIID iid, void** object) {
    if (outer) return detail::HandOut(new detail::AggregatedObject<Implementation>(outer), iid, object);
    return detail::HandOut(new detail::StandaloneObject<Implementation>, iid, object);
}

}  // namespace wncom::server
