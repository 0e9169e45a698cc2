// A list of port-map records, with a place in it.
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "components/DualObject.h"
#include "wncom/CPComPtr.h"
#include "wncom/PortMap.h"

namespace wncom::components {

// Two stretches: the records that the map gives, each made anew whenever it is asked for, and behind them the ones
// that a client added.
class PortMapList : public DualObject<IPortMapList> {
public:
    // Makes the record of an index below the count; the reference is the caller's.
    using RecordMaker = std::function<HRESULT(std::size_t index, IPortMapContent** record)>;

    HRESULT STDMETHODCALLTYPE Next(IPortMapContent** record) override;
    HRESULT STDMETHODCALLTYPE get_Count(LONG* count) override;
    HRESULT STDMETHODCALLTYPE Add(IPortMapContent* record) override;
    HRESULT STDMETHODCALLTYPE First(IPortMapContent** record) override;

    void Fill(std::size_t count, RecordMaker make);

private:
    std::size_t m_made = 0;
    RecordMaker m_make;
    std::vector<CPComPtr<IPortMapContent>> m_added;
    std::size_t m_place = 0;  // of the record that Next gives
};

}  // namespace wncom::components
