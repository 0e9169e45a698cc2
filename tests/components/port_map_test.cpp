// Searching the port map and walking what it finds.
#include "tests/components/ComponentsFixture.h"

namespace wncom::test {
namespace {

class PortMap : public ComponentsFixture {
protected:
    PortMap() {
        WriteMap(
            "<device name='one'>"
            "  <service name='a' address='http://h/one/a' transport='HTTP'/>"
            "  <service address='usb:7'/>"
            "</device>"
            "<device name='two'><service address='http://h/two' transport='Raw'/></device>"
            "<device name='empty'/>");
    }
    static void WriteMap(const std::string& devices) {
        WriteWholeFile(PortMapPath(), "<portmap>" + devices + "</portmap>");
    }
    // The devices of a search, or its status.
    Lines Search(std::string_view address) {
        CPComPtr<IPortMapList> devices;
        const HRESULT status = m_map->GetMatchingDevices(TemplateFor(address).get(), devices.put());
        if (status == S_OK) return Records(devices);
        EXPECT_EQ(devices.get(), nullptr);
        return {Hex(status)};
    }

    CPComPtr<IPortMap> m_map = Create<IPortMap>(kProgIdPortMap);
};

const Lines kOneServices = {"a|http://h/one/a|HTTP", "null|usb:7|null"};

TEST_F(PortMap, SearchFindsDevicesByAPartOfAServiceAddress) {
    EXPECT_EQ(Search("http://h/"), (Lines{"one|null|null", "two|null|null"}));
    EXPECT_EQ(Search("two"), Lines{"two|null|null"});
    EXPECT_EQ(Search("HTTP://h/"), Lines{Hex(S_FALSE)}) << "case counts";
    EXPECT_EQ(Search("http://h/one/a/b"), Lines{Hex(S_FALSE)}) << "the service's address is the longer one";
    EXPECT_EQ(Records(ServicesOf(FirstDevice("usb:7"))), kOneServices)
        << "all services of the device, in the file's order";
}

TEST_F(PortMap, AllDevicesAreListed) {
    CPComPtr<IPortMapList> devices;
    ASSERT_EQ(m_map->GetDevices(devices.put()), S_OK);
    LONG count = 0;
    EXPECT_EQ(devices->get_Count(&count), S_OK);
    EXPECT_EQ(count, 3);
    EXPECT_EQ(Records(devices), (Lines{"one|null|null", "two|null|null", "empty|null|null"}));
    CPComPtr<IPortMapContent> device;
    CPComPtr<IUnknown> services;
    ASSERT_EQ(devices->First(device.put()), S_OK);
    EXPECT_EQ(device->get_ServiceList(services.put()), S_OK);
    while (devices->Next(device.put()) == S_OK) services.Release(), device->get_ServiceList(services.put());
    EXPECT_FALSE(services) << "a device without services has no list";
}

TEST_F(PortMap, ResultsAreCopies) {
    const auto services = ServicesOf(FirstDevice("usb"));
    CPComPtr<IPortMapContent> service;
    ASSERT_EQ(services->First(service.put()), S_OK);
    EXPECT_EQ(service->put_TransportInfo(Text("changed").get()), S_OK);
    EXPECT_EQ(services->Add(service.get()), S_OK);
    Lines changed = kOneServices;
    changed.push_back("a|http://h/one/a|changed");
    EXPECT_EQ(Records(services), changed);
    EXPECT_EQ(Records(ServicesOf(FirstDevice("usb"))), kOneServices);
}

TEST_F(PortMap, TemplateMustNameAnAddress) {
    EXPECT_EQ(Search(""), Lines{Hex(E_INVALIDARG)});
    CPComPtr<IPortMapList> devices;
    const auto device = Create<IPortMapContent>(kProgIdDeviceContent);
    EXPECT_EQ(Hex(m_map->GetMatchingDevices(device.get(), devices.put())), Hex(E_INVALIDARG));
    EXPECT_EQ(device->put_ServiceList(Create<IPortMapList>(kProgIdServiceList).get()), S_OK);
    EXPECT_EQ(Hex(m_map->GetMatchingDevices(device.get(), devices.put())), Hex(E_INVALIDARG));
    EXPECT_EQ(Hex(m_map->GetMatchingDevices(nullptr, devices.put())), Hex(E_POINTER));
    EXPECT_EQ(Hex(m_map->GetMatchingDevices(device.get(), nullptr)), Hex(E_POINTER));
    EXPECT_EQ(Hex(m_map->GetDevices(nullptr)), Hex(E_POINTER));
    EXPECT_EQ(Hex(device->get_ServiceList(nullptr)), Hex(E_POINTER));
}

TEST_F(PortMap, ListIsWalkedFromItsStartAgainAndAgain) {
    const auto list = Create<IPortMapList>(kProgIdServiceList);
    EXPECT_EQ(Records(list), Lines{});
    EXPECT_EQ(list->Add(TemplateFor("x").get()), S_OK);
    EXPECT_EQ(Records(list).size(), 1u);
    EXPECT_EQ(list->Add(TemplateFor("y").get()), S_OK);
    CPComPtr<IPortMapContent> record;
    EXPECT_EQ(list->Next(record.put()), S_OK) << "a walk at its end goes on with what is added";
    EXPECT_EQ(Records(list).size(), 2u);
    EXPECT_EQ(Hex(list->Add(nullptr)), Hex(E_POINTER));
    EXPECT_EQ(Hex(list->First(nullptr)), Hex(E_POINTER));
    EXPECT_EQ(Hex(list->Next(nullptr)), Hex(E_POINTER));
    EXPECT_EQ(Hex(list->get_Count(nullptr)), Hex(E_POINTER));
}

TEST_F(PortMap, TenThousandServicesAreWalked) {
    std::string device = "<device name='large'>";
    for (int i = 0; i < 10'000; ++i)
        device += "<service address='http://h/" + std::to_string(i) + "' transport='T'/>";
    WriteMap(device + "</device>");
    const Lines services = Records(ServicesOf(FirstDevice("http://h/9999")));
    ASSERT_EQ(services.size(), 10'000u);
    EXPECT_EQ(services.back(), "null|http://h/9999|T");
}

}  // namespace
}  // namespace wncom::test
