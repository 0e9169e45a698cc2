#include "components/portmap/PortMapContent.h"

#include <new>
#include <utility>

#include "common/Guard.h"
#include "components/portmap/PortMapList.h"

namespace wncom::components {
namespace {

// An attribute that the file leaves out reads as a text that was never set.
void Set(TextProperty& property, const WideText& text) {
    if (text.empty()) return;
    const Bstr copy(text);
    if (!copy || FAILED(property.Put(copy.get()))) throw std::bad_alloc();
}

}  // namespace

HRESULT PortMapContent::get_ServiceList(IUnknown** list) {
    if (!list) return E_POINTER;
    *list = nullptr;
    return Guarded([&]() -> HRESULT {
        if (m_device) {
            const HRESULT status = MakeServiceRecords(m_device, m_services.put());
            if (FAILED(status)) return status;
            m_device.reset();
        }
        if (!m_services) return S_FALSE;
        *list = CPComPtr<IPortMapList>(m_services).detach();
        return S_OK;
    });
}

HRESULT PortMapContent::put_ServiceList(IPortMapList* list) {
    m_device.reset();
    m_services = CPComPtr<IPortMapList>(list);
    return S_OK;
}

void PortMapContent::Fill(const ServiceData& service) {
    Set(m_name, service.name);
    Set(m_address, service.address);
    Set(m_transport, service.transport);
}

void PortMapContent::Fill(std::shared_ptr<const DeviceData> device) {
    Set(m_name, device->name);
    if (!device->services.empty()) m_device = std::move(device);
}

HRESULT MakeServiceRecords(std::shared_ptr<const DeviceData> device, IPortMapList** list) {
    const std::size_t count = device->services.size();
    auto make = [device = std::move(device)](std::size_t index, IPortMapContent** record) {
        return MakeObject<PortMapContent>(record,
                                          [&](PortMapContent& content) { content.Fill(device->services[index]); });
    };
    return MakeObject<PortMapList>(list, [&](PortMapList& made) { made.Fill(count, std::move(make)); });
}

HRESULT MakeDeviceRecords(std::vector<std::shared_ptr<const DeviceData>> devices, IPortMapList** list) {
    const std::size_t count = devices.size();
    auto make = [devices = std::move(devices)](std::size_t index, IPortMapContent** record) {
        return MakeObject<PortMapContent>(record, [&](PortMapContent& content) { content.Fill(devices[index]); });
    };
    return MakeObject<PortMapList>(list, [&](PortMapList& made) { made.Fill(count, std::move(make)); });
}

}  // namespace wncom::components
