// The fake port map: one device, whose services the script holds.
#pragma once

#include <string>
#include <vector>

#include "components/portmap/ReservedRecordSlots.h"
#include "tests/fakes/FakeObject.h"
#include "wncom/PortMap.h"

namespace wncom::test {

// Operations enter the script under the record's name: "DeviceContent" and "ServiceContent" for created ones,
// "Device" and "Service" for those that the map gives out.
class FakeRecord final : public components::ReservedRecordSlots<FakeObject<IPortMapContent>> {
public:
    explicit FakeRecord(std::string name, FakeService service = {})
        : m_name(std::move(name)), m_address(service.address), m_transport(service.transport) {}

    HRESULT STDMETHODCALLTYPE get_Name(BSTR* name) override { return GiveText(m_name + ".get_Name", name, {}); }
    HRESULT STDMETHODCALLTYPE put_Name(BSTR name) override { return Do(m_name + ".put_Name", {ToUtf8(name)}); }
    HRESULT STDMETHODCALLTYPE get_ServiceAddress(BSTR* address) override {
        return GiveText(m_name + ".get_ServiceAddress", address, m_address);
    }
    HRESULT STDMETHODCALLTYPE put_ServiceAddress(BSTR address) override {
        return TakeText(m_name + ".put_ServiceAddress", address, m_address);
    }
    HRESULT STDMETHODCALLTYPE get_TransportInfo(BSTR* entry) override {
        return GiveText(m_name + ".get_TransportInfo", entry, m_transport);
    }
    HRESULT STDMETHODCALLTYPE put_TransportInfo(BSTR entry) override {
        return TakeText(m_name + ".put_TransportInfo", entry, m_transport);
    }
    HRESULT STDMETHODCALLTYPE get_ServiceList(IUnknown** list) override;
    HRESULT STDMETHODCALLTYPE put_ServiceList(IPortMapList* list) override;

private:
    std::string m_name;
    std::optional<std::string> m_address;
    std::optional<std::string> m_transport;
    CPComPtr<IPortMapList> m_services;
};

// "ServiceList" for a created one, "DeviceList" and "DeviceServices" for those that the map gives out.
class FakeList final : public FakeObject<IPortMapList> {
public:
    explicit FakeList(std::string name) : m_name(std::move(name)) {}
    void Put(const char* name, FakeService service = {}) {
        m_records.emplace_back().attach(new FakeRecord(name, std::move(service)));
    }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    HRESULT STDMETHODCALLTYPE Next(IPortMapContent** record) override;
    HRESULT STDMETHODCALLTYPE get_Count(LONG* count) override;
    HRESULT STDMETHODCALLTYPE Add(IPortMapContent* record) override;
    HRESULT STDMETHODCALLTYPE First(IPortMapContent** record) override;

private:
    HRESULT GiveRecord(const std::string& operation, IPortMapContent** record);

    std::string m_name;
    std::vector<CPComPtr<IPortMapContent>> m_records;
    std::size_t m_place = 0;
};

class FakePortMap final : public FakeObject<IPortMap> {
public:
    HRESULT STDMETHODCALLTYPE GetDevices(IPortMapList** devices) override;
    HRESULT STDMETHODCALLTYPE GetMatchingDevices(IPortMapContent* device, IPortMapList** devices) override;
};

}  // namespace wncom::test
