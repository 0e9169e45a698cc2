// The port map's file: where it is, when it is read, and what is refused.
#include <chrono>
#include <filesystem>

#include "common/OpenKey.h"
#include "tests/components/ComponentsFixture.h"

namespace wncom::test {
namespace {

namespace fs = std::filesystem;

class PortMapFile : public ComponentsFixture {
protected:
    static void SetFileValue(DWORD type, const std::string& data) {
        OpenKey key;
        ASSERT_EQ(key.Create(HKEY_LOCAL_MACHINE, "SOFTWARE\\Quillbeck\\QBNorvel\\PortMap"), ERROR_SUCCESS);
        EXPECT_EQ(RegSetValueExA(key.get(), "portmapfile", 0, type, reinterpret_cast<const BYTE*>(data.data()),
                                 static_cast<DWORD>(data.size())),
                  ERROR_SUCCESS);
    }

    // The names of all devices, each with a space behind it, or the status.
    std::string Devices() {
        CPComPtr<IPortMapList> devices;
        const HRESULT status = m_map->GetDevices(devices.put());
        return FAILED(status) ? Hex(status) : Names(devices);
    }
    static std::string Names(const CPComPtr<IPortMapList>& devices) {
        std::string names;
        for (const std::string& line : Records(devices)) names += line.substr(0, line.find('|')) + ' ';
        return names;
    }
    static void WriteMap(const std::string& device) {
        WriteWholeFile(PortMapPath(), "<portmap><device name='" + device + "'/></portmap>");
    }

    CPComPtr<IPortMap> m_map = Create<IPortMap>(kProgIdPortMap);
};

TEST_F(PortMapFile, RegistryNamesTheFile) {
    EXPECT_EQ(Devices(), "") << "a missing file is an empty map";
    CPComPtr<IPortMapList> devices;
    EXPECT_EQ(Hex(m_map->GetMatchingDevices(TemplateFor("x").get(), devices.put())), Hex(S_FALSE));
    WriteMap("default");
    EXPECT_EQ(Devices(), "default ");
    WriteWholeFile(PathOf("other.xml"), "<portmap><device name='other'/></portmap>");
    const std::string tooLong = Hex(HRESULT_FROM_WIN32(ERROR_MORE_DATA));
    const struct {
        DWORD type;
        std::string data;
        std::string devices;
    } kValues[] = {{REG_SZ, PathOf("other.xml"), "other "},  // a registry text may lack its terminator
                   {REG_SZ, std::string(1, '\0'), "default "}, {REG_SZ, PathOf("no/such/folder.xml"), ""},
                   {REG_DWORD, "1234", kInvalidData},          {REG_SZ, std::string("a\0b", 4), kInvalidData},
                   {REG_SZ, std::string(5000, 'x'), tooLong}};
    for (const auto& value : kValues) {
        SetFileValue(value.type, value.data);
        EXPECT_EQ(Devices(), value.devices) << value.data;
    }
}

TEST_F(PortMapFile, ChangedFileIsReadAgain) {
    WriteMap("a");
    EXPECT_EQ(Devices(), "a ");
    CPComPtr<IPortMapList> before;
    ASSERT_EQ(m_map->GetDevices(before.put()), S_OK);
    WriteMap("b");
    EXPECT_EQ(Devices(), "b ") << "written at once, to the same size";
    EXPECT_EQ(Names(before), "a ") << "a list in hand stays as it was";
    WriteWholeFile(PortMapPath(), "<portmap>");
    EXPECT_EQ(Devices(), kInvalidData);
    WriteMap("c");
    EXPECT_EQ(Devices(), "c ");
    fs::remove(PortMapPath());
    EXPECT_EQ(Devices(), "");
}

// A file that is no longer fresh is trusted to be the same while its size and times are.
TEST_F(PortMapFile, FileReplacedByAnOlderOneIsReadAgain) {
#ifdef _WIN32
    GTEST_SKIP() << "Wine tells a file's creation time from its last change, which is the same here";
#endif
    const auto old = fs::file_time_type::clock::now() - std::chrono::hours(1);
    WriteMap("b");
    fs::last_write_time(PortMapPath(), old);
    fs::rename(PortMapPath(), PathOf("next.xml"));
    WriteMap("a");
    fs::last_write_time(PortMapPath(), old);
    EXPECT_EQ(Devices(), "a ");
    fs::rename(PathOf("next.xml"), PortMapPath());
    EXPECT_EQ(Devices(), "b ") << "same size and time, another file";
}

TEST_F(PortMapFile, DamagedFileIsToldWithItsPlace) {
    const struct {
        const char* text;
        const char* told;
    } kDamaged[] = {
        {"<portmap>\n  <device name='a'></devise>\n</portmap>", "line 2, column 22: mismatched tag"},
        {"<map/>", "line 1, column 2: the element \"map\" does not belong here"},
        {"<portmap version='1'/>", "the attribute \"version\" does not belong here"},
        {"<portmap>\n \xC3\xA9<!-- c --><service address='a'/></portmap>",
         "line 1, column 10: no text may stand here"},
        {"<portmap>\n <service address='a'/></portmap>", "line 2, column 3: the element \"service\""},
        {"<portmap><device><service/></device></portmap>", "the service has no address"},
        {"<portmap><device><service adress='a'/></device></portmap>", "the attribute \"adress\""},
        {"<portmap><device name='a' name='b'/></portmap>", "line 1, column 27: duplicate attribute"},
        {"<portmap><device name='<!--&#0;-->'/></portmap>", "line 1, column 24: not well-formed"},
        {"<portmap><device><service address='a'><x/></service></device></portmap>", "the element \"x\""},
        {"<portmap>\xE9</portmap>", "line 1, column 10: not well-formed"},
    };
    for (const auto& damaged : kDamaged) {
        ForgetDebugOutput();
        WriteWholeFile(PortMapPath(), damaged.text);
        EXPECT_EQ(Devices(), kInvalidData) << damaged.text;
        EXPECT_PRED_FORMAT2(testing::IsSubstring, damaged.told, DebugOutput());
        EXPECT_PRED_FORMAT2(testing::IsSubstring, "portmap.xml: ", DebugOutput());
    }
}

}  // namespace
}  // namespace wncom::test
