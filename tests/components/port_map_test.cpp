// Searching the port map and walking what it finds.
#include "tests/components/ComponentsFixture.h"

namespace wncom::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PortMap : public ComponentsFixture {
protected:
    static void WriteMap(const std::string& devices) {
        WriteWholeFile(PortMapPath(), "<portmap>" + devices + "</portmap>");
    }
    // The devices of a search, with its status.
    HRESULT Search(std::string_view address, CPComPtr<IPortMapList>& devices) {
        return m_map->GetMatchingDevices(TemplateFor(address).get(), devices.put());
    }
    // The services of the first device that the search finds.
    CPComPtr<IPortMapList> ServicesFor(std::string_view address) {
        CPComPtr<IPortMapList> devices;
        EXPECT_EQ(Hex(Search(address, devices)), Hex(S_OK));
        CPComPtr<IPortMapContent> device;
        EXPECT_EQ(Hex(devices->First(device.put())), Hex(S_OK));
        return ServicesOf(device);
    }
    static CPComPtr<IPortMapList> ServicesOf(const CPComPtr<IPortMapContent>& device) {
        CPComPtr<IUnknown> held;
        CPComPtr<IPortMapList> services;
        EXPECT_EQ(Hex(device->get_ServiceList(held.put())), Hex(S_OK));
        EXPECT_EQ(Hex(held.QueryInterface(services)), Hex(S_OK));
        return services;
    }

    CPComPtr<IPortMap> m_map = Create<IPortMap>(kProgIdPortMap);
};

constexpr const char* kTwoDevices =
    "<device name='one'>"
    "  <service name='a' address='http://h/one/a' transport='HTTP'/>"
    "  <service address='usb:7'/>"
    "</device>"
    "<device name='two'><service address='http://h/two' transport='Raw'/></device>"
    "<device name='empty'/>";

TEST_F(PortMap, SearchFindsDevicesByAPartOfAServiceAddress) {
    WriteMap(kTwoDevices);
    CPComPtr<IPortMapList> devices;
    EXPECT_EQ(Search("http://h/", devices), S_OK);
    EXPECT_THAT(Records(devices), ElementsAre("one|null|null", "two|null|null"));
    EXPECT_EQ(Search("two", devices), S_OK);
    EXPECT_THAT(Records(devices), ElementsAre("two|null|null"));
    EXPECT_THAT(Records(ServicesFor("usb:7")), ElementsAre("a|http://h/one/a|HTTP", "null|usb:7|null"))
        << "all services of the device, in the file's order";
    EXPECT_EQ(Search("HTTP://h/", devices), S_FALSE) << "case counts";
    EXPECT_EQ(devices.get(), nullptr);
    EXPECT_EQ(Search("http://h/one/a/b", devices), S_FALSE) << "the service's address is the longer one";
}

TEST_F(PortMap, AllDevicesAreListed) {
    WriteMap(kTwoDevices);
    CPComPtr<IPortMapList> devices;
    ASSERT_EQ(m_map->GetDevices(devices.put()), S_OK);
    LONG count = 0;
    EXPECT_EQ(devices->get_Count(&count), S_OK);
    EXPECT_EQ(count, 3);
    EXPECT_THAT(Records(devices), ElementsAre("one|null|null", "two|null|null", "empty|null|null"));
}

TEST_F(PortMap, DeviceWithoutServicesHasNoList) {
    WriteMap(kTwoDevices);
    CPComPtr<IPortMapList> devices;
    ASSERT_EQ(m_map->GetDevices(devices.put()), S_OK);
    CPComPtr<IPortMapContent> device;
    while (devices->Next(device.put()) == S_OK) {
        CPComPtr<IUnknown> services;
        Bstr name;
        EXPECT_EQ(device->get_Name(name.put()), S_OK);
        EXPECT_EQ(device->get_ServiceList(services.put()), Shown(name.get()) == "empty" ? S_FALSE : S_OK);
    }
}

TEST_F(PortMap, ResultsAreCopies) {
    WriteMap(kTwoDevices);
    const auto services = ServicesFor("usb");
    CPComPtr<IPortMapContent> service;
    ASSERT_EQ(services->First(service.put()), S_OK);
    EXPECT_EQ(service->put_TransportInfo(Bstr(OLESTR("changed")).get()), S_OK);
    EXPECT_EQ(services->Add(service.get()), S_OK);
    EXPECT_THAT(Records(services),
                ElementsAre("a|http://h/one/a|HTTP", "null|usb:7|null", "a|http://h/one/a|changed"));
    EXPECT_THAT(Records(ServicesFor("usb")), ElementsAre("a|http://h/one/a|HTTP", "null|usb:7|null"));
}

TEST_F(PortMap, TemplateMustNameAnAddress) {
    WriteMap(kTwoDevices);
    CPComPtr<IPortMapList> devices;
    EXPECT_EQ(Hex(Search("", devices)), Hex(E_INVALIDARG));
    const auto device = Create<IPortMapContent>(kProgIdDeviceContent);
    EXPECT_EQ(Hex(m_map->GetMatchingDevices(device.get(), devices.put())), Hex(E_INVALIDARG));
    const auto empty = Create<IPortMapList>(kProgIdServiceList);
    EXPECT_EQ(device->put_ServiceList(empty.get()), S_OK);
    EXPECT_EQ(Hex(m_map->GetMatchingDevices(device.get(), devices.put())), Hex(E_INVALIDARG));
    EXPECT_EQ(Hex(m_map->GetMatchingDevices(nullptr, devices.put())), Hex(E_POINTER));
    EXPECT_EQ(Hex(m_map->GetMatchingDevices(device.get(), nullptr)), Hex(E_POINTER));
    EXPECT_EQ(Hex(m_map->GetDevices(nullptr)), Hex(E_POINTER));
}

TEST_F(PortMap, RecordKeepsWhatItIsGiven) {
    const auto record = Create<IPortMapContent>(kProgIdServiceContent);
    const WideText text = {'a', 0, 'b'};
    EXPECT_EQ(record->put_ServiceAddress(Bstr(text).get()), S_OK);
    Bstr read;
    EXPECT_EQ(record->get_ServiceAddress(read.put()), S_OK);
    EXPECT_EQ(Shown(read.get()), "a\\u0000b");
    EXPECT_EQ(record->put_ServiceAddress(nullptr), S_OK);
    EXPECT_EQ(record->get_ServiceAddress(read.put()), S_OK);
    EXPECT_EQ(Shown(read.get()), "null");
    EXPECT_EQ(Hex(record->get_TransportInfo(nullptr)), Hex(E_POINTER));
    EXPECT_EQ(Hex(record->get_ServiceList(nullptr)), Hex(E_POINTER));
    EXPECT_EQ(Hex(record->Reserved34()), Hex(E_NOTIMPL));
}

TEST_F(PortMap, ListIsWalkedFromItsStartAgainAndAgain) {
    const auto list = Create<IPortMapList>(kProgIdServiceList);
    EXPECT_THAT(Records(list), IsEmpty());
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
    constexpr int kServices = 10'000;
    std::string device = "<device name='large'>";
    for (int i = 0; i < kServices; ++i) {
        device += "<service address='http://h/" + std::to_string(i) + "' transport='T'/>";
    }
    WriteMap(device + "</device>");
    const std::vector<std::string> services = Records(ServicesFor("http://h/9999"));
    ASSERT_EQ(services.size(), static_cast<std::size_t>(kServices));
    EXPECT_EQ(services.back(), "null|http://h/9999|T");
}

}  // namespace
}  // namespace wncom::test
