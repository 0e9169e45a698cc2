#include "tests/fakes/FakePortMap.h"

namespace wncom::test {

HRESULT FakeRecord::get_ServiceList(IUnknown** list) {
    *list = nullptr;
    return Do(m_name + ".get_ServiceList", {}, [&] {
        CPComPtr<FakeList> services;
        services.attach(new FakeList("DeviceServices"));
        for (const FakeService& service : Script().Services()) services->Put("Service", service);
        *list = services.detach();
        return S_OK;
    });
}

HRESULT FakeRecord::put_ServiceList(IPortMapList* list) {
    return Do(m_name + ".put_ServiceList", {}, [&] {
        m_services = CPComPtr<IPortMapList>(list);
        return S_OK;
    });
}

HRESULT FakeList::QueryInterface(REFIID iid, void** object) {
    *object = nullptr;
    if (m_name != "DeviceServices") return FakeObject::QueryInterface(iid, object);
    return Do("DeviceServices.QueryInterface", {}, [&] { return FakeObject::QueryInterface(iid, object); });
}

HRESULT FakeList::GiveRecord(const std::string& operation, IPortMapContent** record) {
    *record = nullptr;
    return Do(operation, {}, [&] {
        if (m_place >= m_records.size()) return S_FALSE;
        *record = CPComPtr<IPortMapContent>(m_records[m_place++]).detach();
        return S_OK;
    });
}

HRESULT FakeList::First(IPortMapContent** record) {
    m_place = 0;
    return GiveRecord(m_name + ".First", record);
}

HRESULT FakeList::Next(IPortMapContent** record) { return GiveRecord(m_name + ".Next", record); }

HRESULT FakeList::get_Count(LONG* count) {
    return Do(m_name + ".get_Count", {}, [&] {
        *count = static_cast<LONG>(m_records.size());
        return S_OK;
    });
}

HRESULT FakeList::Add(IPortMapContent* record) {
    return Do(m_name + ".Add", {}, [&] {
        m_records.emplace_back(record);
        return S_OK;
    });
}

HRESULT FakePortMap::GetDevices(IPortMapList** devices) {
    *devices = nullptr;
    return Do("PortMap.GetDevices", {}, [] { return S_FALSE; });
}

HRESULT FakePortMap::GetMatchingDevices(IPortMapContent*, IPortMapList** devices) {
    *devices = nullptr;
    return Do("PortMap.GetMatchingDevices", {}, [&] {
        if (Script().Services().empty()) return S_FALSE;
        CPComPtr<FakeList> list;
        list.attach(new FakeList("DeviceList"));
        list->Put("Device");
        *devices = list.detach();
        return S_OK;
    });
}

}  // namespace wncom::test
