// A device record or a service record of the port map.
#pragma once

#include <memory>
#include <vector>

#include "components/DualObject.h"
#include "components/TextProperty.h"
#include "components/portmap/PortMapData.h"
#include "components/portmap/ReservedRecordSlots.h"
#include "wncom/CPComPtr.h"
#include "wncom/PortMap.h"

namespace wncom::components {

// Records that come out of the map are copies: what a client changes in them, or in the lists they hold, is its own.
class PortMapContent : public ReservedRecordSlots<DualObject<IPortMapContent>> {
public:
    HRESULT STDMETHODCALLTYPE get_Name(BSTR* name) override { return m_name.Get(name); }
    HRESULT STDMETHODCALLTYPE put_Name(BSTR name) override { return m_name.Put(name); }
    HRESULT STDMETHODCALLTYPE get_ServiceAddress(BSTR* address) override { return m_address.Get(address); }
    HRESULT STDMETHODCALLTYPE put_ServiceAddress(BSTR address) override { return m_address.Put(address); }
    HRESULT STDMETHODCALLTYPE get_TransportInfo(BSTR* entry) override { return m_transport.Get(entry); }
    HRESULT STDMETHODCALLTYPE put_TransportInfo(BSTR entry) override { return m_transport.Put(entry); }
    HRESULT STDMETHODCALLTYPE get_ServiceList(IUnknown** list) override;
    HRESULT STDMETHODCALLTYPE put_ServiceList(IPortMapList* list) override;

    // Make this the record of a service or a device of the map. A device's list is made when it is first asked for.
    // Both throw std::bad_alloc.
    void Fill(const ServiceData& service);
    void Fill(std::shared_ptr<const DeviceData> device);

private:
    TextProperty m_name;
    TextProperty m_address;
    TextProperty m_transport;
    CPComPtr<IPortMapList> m_services;
    std::shared_ptr<const DeviceData> m_device;  // null once m_services stands for its services
};

// Lists of records of the map, made record by record as they are walked. The reference is the caller's.
HRESULT MakeServiceRecords(std::shared_ptr<const DeviceData> device, IPortMapList** list);
HRESULT MakeDeviceRecords(std::vector<std::shared_ptr<const DeviceData>> devices, IPortMapList** list);

}  // namespace wncom::components
