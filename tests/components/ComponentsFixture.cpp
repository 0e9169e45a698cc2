#include "tests/components/ComponentsFixture.h"

#include <array>
#include <cstdio>

#include "tests/support/Host.h"

namespace wncom::test {

std::string Shown(BSTR text) {
    if (!text) return "null";
    std::string shown;
    for (const OLECHAR unit : WideView(text, SysStringLen(text))) {
        std::array<char, 8> escaped = {};
        std::snprintf(escaped.data(), escaped.size(), "\\u%04x", static_cast<unsigned>(unit));
        const bool plain = unit >= 0x20 && unit < 0x7F;
        shown += plain ? std::string(1, static_cast<char>(unit)) : std::string(escaped.data());
    }
    return shown;
}

ComponentsFixture::ComponentsFixture() : m_module(ProgramFolder() + "/wnComponents.dll") {
    CaptureDebugOutput(PathOf("debug.txt"));
    EXPECT_EQ(Hex(m_module.Call("DllRegisterServer")), Hex(S_OK));
    ForgetDebugOutput();
}

ComponentsFixture::~ComponentsFixture() {
    EXPECT_EQ(Hex(m_module.Call("DllCanUnloadNow")), Hex(S_OK)) << "an object was left behind";
}

std::string Ask(const CPComPtr<IXMLSimpleAccessor>& accessor, std::string_view query, LONG flag) {
    Bstr text;
    const HRESULT status = accessor->GetXML(Text(query).get(), flag, text.put());
    if (status == S_OK) return Shown(text.get());
    EXPECT_EQ(text.get(), nullptr) << "no match and no success, but a text";
    return Hex(status);
}

HRESULT Load(const CPComPtr<IXMLSimpleAccessor>& accessor, WideView document) {
    return accessor->LoadXML(Bstr(document).get());
}

CPComPtr<IPortMapContent> TemplateFor(std::string_view address) {
    const auto device = Create<IPortMapContent>(kProgIdDeviceContent);
    const auto service = Create<IPortMapContent>(kProgIdServiceContent);
    const auto services = Create<IPortMapList>(kProgIdServiceList);
    EXPECT_EQ(service->put_ServiceAddress(Text(address).get()), S_OK);
    EXPECT_EQ(services->Add(service.get()), S_OK);
    EXPECT_EQ(device->put_ServiceList(services.get()), S_OK);
    return device;
}

CPComPtr<IPortMapContent> FirstDevice(std::string_view address) {
    const auto map = Create<IPortMap>(kProgIdPortMap);
    CPComPtr<IPortMapList> devices;
    CPComPtr<IPortMapContent> device;
    EXPECT_EQ(Hex(map->GetMatchingDevices(TemplateFor(address).get(), devices.put())), Hex(S_OK));
    EXPECT_EQ(Hex(devices ? devices->First(device.put()) : E_POINTER), Hex(S_OK));
    return device;
}

CPComPtr<IPortMapList> ServicesOf(const CPComPtr<IPortMapContent>& device) {
    CPComPtr<IUnknown> held;
    EXPECT_EQ(Hex(device ? device->get_ServiceList(held.put()) : E_POINTER), Hex(S_OK));
    return held.query<IPortMapList>();
}

Lines Records(const CPComPtr<IPortMapList>& list) {
    if (!list) return {"no list"};
    Lines lines;
    CPComPtr<IPortMapContent> record;
    HRESULT status = list->First(record.put());
    for (; status == S_OK; status = list->Next(record.put())) {
        Bstr name;
        Bstr address;
        Bstr transport;
        EXPECT_EQ(record->get_Name(name.put()), S_OK);
        EXPECT_EQ(record->get_ServiceAddress(address.put()), S_OK);
        EXPECT_EQ(record->get_TransportInfo(transport.put()), S_OK);
        lines.push_back(Shown(name.get()) + "|" + Shown(address.get()) + "|" + Shown(transport.get()));
    }
    EXPECT_EQ(Hex(status), Hex(S_FALSE));
    EXPECT_EQ(record.get(), nullptr);
    return lines;
}

std::string PortMapPath() {
    std::array<char, MAX_PATH> folder = {};
    EXPECT_NE(GetWindowsDirectoryA(folder.data(), MAX_PATH), 0u);
    return HostPath(std::string(folder.data()) + "\\portmap.xml");
}

}  // namespace wncom::test
