// The list of texts that two operations of the remote job-control object return.
#pragma once

#include <windows.h>

#include "wncom/CString.h"
#include "wncom/Logging.h"

namespace wncom {

// What every list holds: the elements, made with new[], and their count.
class ORBBase {
public:
    // Logs the elements; called by the bridge when it receives a list.
    void Init() const noexcept {
        for (LONG i = 0; m_elements && i < m_length; ++i)
            WNCOM_LOG(4, "ORBBase::Init() list element is %s", m_elements[i]);
    }

protected:
    CString* m_elements = nullptr;
    LONG m_length = 0;
};

// Made with new by a transport library, deleted by the bridge: both use one allocator. It owns its elements.
class RemoteArray : public ORBBase {
public:
    RemoteArray() noexcept = default;
    RemoteArray(const RemoteArray&) = delete;
    RemoteArray& operator=(const RemoteArray&) = delete;
    ~RemoteArray() { delete[] m_elements; }

    // Takes over an array made with new[] and its count; null holds nothing, whatever the count. Called once, by the
    // transport library: its logging state is that library's own.
    void Init(CString* elements, LONG length) noexcept {
        Log(3, "Entering RemoteArray::Init()");
        m_elements = elements;
        m_length = length;
        for (LONG i = 0; elements && i < length; ++i)
            WNCOM_LOG(4, "RemoteArray::Init() list element is %s", m_elements[i]);
        Log(3, "Exiting RemoteArray::Init()");
    }
    LONG GetLength() const noexcept { return m_length; }
    const CString* GetElements() const noexcept { return m_elements; }
};

}  // namespace wncom
