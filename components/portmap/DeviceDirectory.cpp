#include "components/portmap/DeviceDirectory.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "common/Guard.h"
#include "components/portmap/PortMapContent.h"
#include "components/portmap/PortMapFile.h"
#include "wncom/Bstr.h"

namespace wncom::components {
namespace {

// The address of a template's first service. The template may be a client's own implementation, so it is asked
// through its interfaces only and nothing it answers is taken for granted. E_INVALIDARG when it names no address: an
// empty one would be found in every service.
HRESULT WantedAddress(IPortMapContent* device, Bstr& address) {
    CPComPtr<IUnknown> held;
    if (const HRESULT status = device->get_ServiceList(held.put()); FAILED(status)) return status;
    if (!held) return E_INVALIDARG;
    CPComPtr<IPortMapList> services;
    if (const HRESULT status = held.QueryInterface(services); FAILED(status)) return status;
    CPComPtr<IPortMapContent> service;
    if (const HRESULT status = services->First(service.put()); FAILED(status)) return status;
    if (!service) return E_INVALIDARG;
    if (const HRESULT status = service->get_ServiceAddress(address.put()); FAILED(status)) return status;
    return address.empty() ? E_INVALIDARG : S_OK;
}

// The devices of the map that the test lets pass; each holds the whole map as long as it lives.
template <class Test>
HRESULT SelectDevices(Test passes, std::vector<std::shared_ptr<const DeviceData>>& selected) {
    std::shared_ptr<const PortMapData> map;
    if (const HRESULT status = CurrentPortMap(map); FAILED(status)) return status;
    for (const DeviceData& device : map->devices) {
        if (passes(device)) selected.emplace_back(map, &device);
    }
    return S_OK;
}

}  // namespace

HRESULT DeviceDirectory::GetDevices(IPortMapList** devices) {
    if (!devices) return E_POINTER;
    *devices = nullptr;
    return Guarded([&]() -> HRESULT {
        std::vector<std::shared_ptr<const DeviceData>> all;
        const HRESULT status = SelectDevices([](const DeviceData&) { return true; }, all);
        return FAILED(status) ? status : MakeDeviceRecords(std::move(all), devices);
    });
}

HRESULT DeviceDirectory::GetMatchingDevices(IPortMapContent* device, IPortMapList** devices) {
    if (!device || !devices) return E_POINTER;
    *devices = nullptr;
    return Guarded([&]() -> HRESULT {
        Bstr wanted;
        if (const HRESULT status = WantedAddress(device, wanted); FAILED(status)) return status;
        const auto serves = [&wanted](const ServiceData& service) {
            return service.address.find(wanted.view()) != WideText::npos;
        };
        std::vector<std::shared_ptr<const DeviceData>> matching;
        const HRESULT status = SelectDevices(
            [&](const DeviceData& candidate) {
                return std::any_of(candidate.services.begin(), candidate.services.end(), serves);
            },
            matching);
        if (FAILED(status)) return status;
        return matching.empty() ? S_FALSE : MakeDeviceRecords(std::move(matching), devices);
    });
}

}  // namespace wncom::components
