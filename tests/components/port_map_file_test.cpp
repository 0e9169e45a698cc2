// The port map's file: where it is, when it is read, and what is refused.
#include <cstdlib>
#include <filesystem>

#include "tests/components/ComponentsFixture.h"
#include "tests/support/Host.h"

namespace wncom::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class PortMapFile : public ComponentsFixture {
protected:
    static void SetUpTestSuite() { CaptureDebugOutput(PathOf("debug.txt")); }

    static void SetFileValue(DWORD type, const std::string& data) {
        HKEY key = nullptr;
        ASSERT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Quillbeck\\QBNorvel\\PortMap", 0, nullptr,
                                  REG_OPTION_NON_VOLATILE, KEY_WRITE, nullptr, &key, nullptr),
                  ERROR_SUCCESS);
        EXPECT_EQ(RegSetValueExA(key, "portmapfile", 0, type, reinterpret_cast<const BYTE*>(data.data()),
                                 static_cast<DWORD>(data.size())),
                  ERROR_SUCCESS);
        RegCloseKey(key);
    }

    // The names of all devices, or the status.
    std::vector<std::string> Devices() {
        CPComPtr<IPortMapList> devices;
        const HRESULT status = m_map->GetDevices(devices.put());
        return FAILED(status) ? std::vector{Hex(status)} : Records(devices);
    }

    CPComPtr<IPortMap> m_map = Create<IPortMap>(kProgIdPortMap);
};

std::string MapWith(const std::string& device) { return "<portmap><device name='" + device + "'/></portmap>"; }

TEST_F(PortMapFile, MissingFileIsAnEmptyMap) {
    EXPECT_THAT(Devices(), IsEmpty());
    SetFileValue(REG_SZ, PathOf("no/such/folder.xml"));
    EXPECT_THAT(Devices(), IsEmpty());
    CPComPtr<IPortMapList> devices;
    EXPECT_EQ(Hex(m_map->GetMatchingDevices(TemplateFor("x").get(), devices.put())), Hex(S_FALSE));
}

TEST_F(PortMapFile, RegistryNamesTheFile) {
    WriteWholeFile(PortMapPath(), MapWith("default"));
    WriteWholeFile(PathOf("other.xml"), MapWith("other"));
    EXPECT_THAT(Devices(), ElementsAre("default|null|null"));
    SetFileValue(REG_SZ, PathOf("other.xml"));
    EXPECT_THAT(Devices(), ElementsAre("other|null|null")) << "a registry text may lack its terminator";
    SetFileValue(REG_SZ, std::string(1, '\0'));
    EXPECT_THAT(Devices(), ElementsAre("default|null|null")) << "an empty text names no file";
}

TEST_F(PortMapFile, DamagedRegistryValueIsRefused) {
    WriteWholeFile(PortMapPath(), MapWith("default"));
    SetFileValue(REG_DWORD, "1234");
    EXPECT_THAT(Devices(), ElementsAre(Hex(HRESULT_FROM_WIN32(ERROR_INVALID_DATA))));
    SetFileValue(REG_SZ, std::string("a\0b", 4));
    EXPECT_THAT(Devices(), ElementsAre(Hex(HRESULT_FROM_WIN32(ERROR_INVALID_DATA))));
    SetFileValue(REG_SZ, std::string(5000, 'x'));
    EXPECT_THAT(Devices(), ElementsAre(Hex(HRESULT_FROM_WIN32(ERROR_MORE_DATA))));
}

TEST_F(PortMapFile, ChangedFileIsReadAgain) {
    EXPECT_THAT(Devices(), IsEmpty());
    WriteWholeFile(PortMapPath(), MapWith("a"));
    EXPECT_THAT(Devices(), ElementsAre("a|null|null"));
    WriteWholeFile(PortMapPath(), MapWith("b"));
    EXPECT_THAT(Devices(), ElementsAre("b|null|null")) << "written at once, to the same size";
    WriteWholeFile(PortMapPath(), "<portmap>");
    EXPECT_THAT(Devices(), ElementsAre(Hex(HRESULT_FROM_WIN32(ERROR_INVALID_DATA))));
    WriteWholeFile(PortMapPath(), MapWith("c"));
    EXPECT_THAT(Devices(), ElementsAre("c|null|null"));
    std::filesystem::remove(PortMapPath());
    EXPECT_THAT(Devices(), IsEmpty());
}

// A file that is no longer fresh is trusted to be the same while its size and times are.
TEST_F(PortMapFile, FileReplacedByAnOlderOneIsReadAgain) {
#ifdef _WIN32
    GTEST_SKIP() << "Wine tells a file's creation time from its last change, which is the same here";
#endif
    namespace fs = std::filesystem;
    const auto old = fs::file_time_type::clock::now() - std::chrono::hours(1);
    WriteWholeFile(PortMapPath(), MapWith("a"));
    fs::last_write_time(PortMapPath(), old);
    EXPECT_THAT(Devices(), ElementsAre("a|null|null"));
    WriteWholeFile(PathOf("next.xml"), MapWith("b"));
    fs::last_write_time(PathOf("next.xml"), old);
    fs::rename(PathOf("next.xml"), PortMapPath());
    EXPECT_THAT(Devices(), ElementsAre("b|null|null")) << "same size and time, another file";
}

TEST_F(PortMapFile, ListInHandOutlivesAChange) {
    WriteWholeFile(PortMapPath(), MapWith("a"));
    CPComPtr<IPortMapList> devices;
    ASSERT_EQ(m_map->GetDevices(devices.put()), S_OK);
    WriteWholeFile(PortMapPath(), MapWith("b"));
    EXPECT_THAT(Devices(), ElementsAre("b|null|null"));
    EXPECT_THAT(Records(devices), ElementsAre("a|null|null"));
}

TEST_F(PortMapFile, DamagedFileIsToldWithItsPlace) {
    struct Case {
        const char* text;
        const char* told;
    };
    for (const Case& damaged : {
             Case{"<portmap>\n  <device name='a'></devise>\n</portmap>", "line 2, column "},
             Case{"<map/>", "line 1, column 2: the element \"map\" does not belong here"},
             Case{"<portmap version='1'/>", "the attribute \"version\" does not belong here"},
             Case{"<portmap>\n <service address='a'/></portmap>", "line 2, column 3: the element \"service\""},
             Case{"<portmap><device><service/></device></portmap>", "the service has no address"},
             Case{"<portmap><device><service adress='a'/></device></portmap>", "the attribute \"adress\""},
             Case{"<portmap><device name='a' name='b'/></portmap>", "the attribute \"name\" stands twice"},
             Case{"<portmap><device><service address='a'><x/></service></device></portmap>", "the element \"x\""},
             Case{"<portmap><!-- c -->\n\xC3\xA9 stray</portmap>", "no text may stand here"},
             Case{"<portmap>\xE9</portmap>", "the bytes are not UTF-8"},
         }) {
        std::filesystem::remove(PathOf("debug.txt"));
        WriteWholeFile(PortMapPath(), damaged.text);
        EXPECT_THAT(Devices(), ElementsAre(Hex(HRESULT_FROM_WIN32(ERROR_INVALID_DATA)))) << damaged.text;
        const std::string told = ReadWholeFile(PathOf("debug.txt"));
        EXPECT_THAT(told, HasSubstr(damaged.told));
        EXPECT_THAT(told, HasSubstr("portmap.xml: "));
    }
}

TEST_F(PortMapFile, FileCutOffAnywhereIsRefused) {
    const std::string whole =
        "<portmap><device name='a'><service name='s' address='x' transport='t'/></device></portmap>";
    for (std::size_t length = 0; length < whole.size(); ++length) {
        WriteWholeFile(PortMapPath(), whole.substr(0, length));
        EXPECT_THAT(Devices(), ElementsAre(Hex(HRESULT_FROM_WIN32(ERROR_INVALID_DATA)))) << length;
    }
}

}  // namespace
}  // namespace wncom::test
