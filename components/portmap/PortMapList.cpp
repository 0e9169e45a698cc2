#include "components/portmap/PortMapList.h"

#include <utility>

#include "common/Guard.h"

namespace wncom::components {

HRESULT PortMapList::Next(IPortMapContent** record) {
    if (!record) return E_POINTER;
    *record = nullptr;
    if (m_place >= m_made + m_added.size()) return S_FALSE;
    if (m_place < m_made) {
        const HRESULT status = Guarded([&] { return m_make(m_place, record); });
        if (FAILED(status)) return status;
    } else {
        *record = CPComPtr<IPortMapContent>(m_added[m_place - m_made]).detach();
    }
    ++m_place;
    return S_OK;
}

HRESULT PortMapList::get_Count(LONG* count) {
    if (!count) return E_POINTER;
    *count = static_cast<LONG>(m_made + m_added.size());
    return S_OK;
}

HRESULT PortMapList::Add(IPortMapContent* record) {
    if (!record) return E_POINTER;
    return Guarded([&]() -> HRESULT {
        m_added.emplace_back(record);
        return S_OK;
    });
}

HRESULT PortMapList::First(IPortMapContent** record) {
    if (!record) return E_POINTER;
    m_place = 0;
    return Next(record);
}

void PortMapList::Fill(std::size_t count, RecordMaker make) {
    m_made = count;
    m_make = std::move(make);
}

}  // namespace wncom::components
