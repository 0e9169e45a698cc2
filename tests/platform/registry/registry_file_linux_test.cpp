// The registry's file, as a person reads and edits it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <string>

#include "tests/support/TestHome.h"

namespace {

using testing::HasSubstr;
using wncom::test::HomePath;
using wncom::test::ReadWholeFile;
using wncom::test::WriteWholeFile;

const std::string kHeader = "Windows Registry Editor Version 5.00\n";

std::string File() { return HomePath() + "/registry.reg"; }

LSTATUS Create(LPCSTR path, HKEY* key) {
    return RegCreateKeyExA(HKEY_LOCAL_MACHINE, path, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, key, nullptr);
}

LSTATUS Query(LPCSTR path, LPCSTR name, std::string& data, DWORD* type = nullptr) {
    HKEY key;
    if (const LSTATUS status = RegOpenKeyExA(HKEY_LOCAL_MACHINE, path, 0, KEY_READ, &key)) return status;
    char buffer[256];
    DWORD size = sizeof buffer;
    const LSTATUS status = RegQueryValueExA(key, name, nullptr, type, reinterpret_cast<LPBYTE>(buffer), &size);
    data.assign(buffer, status == ERROR_SUCCESS ? size : 0);
    RegCloseKey(key);
    return status;
}

std::string QueryText(LPCSTR path, LPCSTR name) {
    std::string data;
    EXPECT_EQ(Query(path, name, data), ERROR_SUCCESS);
    return data.c_str();
}

TEST(RegistryFile, HoldsWhatWasWrittenInReadableForm) {
    HKEY key;
    ASSERT_EQ(Create("SOFTWARE\\Readable", &key), 0);
    const auto set = [key](LPCSTR name, DWORD type, const std::string& data) {
        RegSetValueExA(key, name, 0, type, reinterpret_cast<const BYTE*>(data.data()),
                       static_cast<DWORD>(data.size()));
    };
    set("", REG_SZ,
        std::string("d\xE9"
                    "faut\0",
                    7));
    set("path", REG_SZ, std::string("C:\\a \"b\"\0", 9));
    set("number", REG_DWORD, std::string("\x1F\0\0\0", 4));
    set("open", REG_SZ, "ab");
    RegCloseKey(key);
    const std::string text = ReadWholeFile(File());
    EXPECT_TRUE(text.starts_with(kHeader));
    EXPECT_THAT(text, HasSubstr("\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Readable]\n"
                                "@=\"d\xC3\xA9"
                                "faut\"\n"
                                "\"path\"=\"C:\\\\a \\\"b\\\"\"\n"
                                "\"number\"=dword:0000001f\n"
                                "\"open\"=hex(1):61,62\n"));
}

TEST(RegistryFile, IsReadAsAPersonWritesIt) {
    WriteWholeFile(File(), "\xEF\xBB\xBF" + kHeader +
                               "\r\n; a note\r\n[hkey_local_machine\\software\\Hand]\r\n"
                               "@=\"x\"\r\n\"Path\" = \"C:\\dir\\file\"\r\n\"bytes\"=hex:01,\\\r\n  02\r\n"
                               "[HKEY_CLASSES_ROOT\\Hand.Class]\n@=\"class\"\n");
    std::string data;
    EXPECT_EQ(Query("SOFTWARE\\Hand", "bytes", data), ERROR_SUCCESS);
    EXPECT_EQ(data, "\x01\x02");
    EXPECT_EQ(QueryText("SOFTWARE\\Hand", "path"), "C:\\dir\\file");
    EXPECT_EQ(QueryText("SOFTWARE\\Classes\\hand.class", nullptr), "class");
}

TEST(RegistryFile, ChangesAreSeenAtTheNextCall) {
    WriteWholeFile(File(), kHeader + "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Seen]\n\"v\"=\"one\"\n");
    EXPECT_EQ(QueryText("SOFTWARE\\Seen", "v"), "one");
    WriteWholeFile(File(), kHeader + "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Seen]\n\"v\"=\"three\"\n");
    EXPECT_EQ(QueryText("SOFTWARE\\Seen", "v"), "three");
}

TEST(RegistryFile, IsSeenToBeReplacedHoweverAnEditorDoesIt) {
    const auto text = [](const std::string& value) {
        return kHeader + "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Replaced]\n\"v\"=\"" + value + "\"\n";
    };
    const auto seen = [] { return QueryText("SOFTWARE\\Replaced", "v"); };
    WriteWholeFile(File(), text("1"));
    EXPECT_EQ(seen(), "1");
    WriteWholeFile(File() + ".2", text("2"));
    std::filesystem::rename(File() + ".2", File());
    EXPECT_EQ(seen(), "2");
    std::filesystem::rename(File(), File() + ".backup");
    WriteWholeFile(File(), text("3"));
    EXPECT_EQ(seen(), "3");
    // A link leads to other files while each of them stays as it is.
    for (const char* value : {"4", "5"}) {
        WriteWholeFile(File() + "." + value, text(value));
        std::filesystem::remove(File());
        std::filesystem::create_symlink(File() + "." + value, File());
        EXPECT_EQ(seen(), value);
    }
    std::filesystem::remove(File());
    std::string data;
    EXPECT_EQ(Query("SOFTWARE\\Replaced", "v", data), ERROR_FILE_NOT_FOUND);
}

TEST(RegistryFile, KeepsCommentsWhereTheyStood) {
    WriteWholeFile(File(),
                   kHeader + "\n; of the key\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Noted]\n; of v\n\"v\"=\"1\"\n; end\n");
    HKEY key;
    ASSERT_EQ(Create("SOFTWARE\\Noted\\New", &key), 0);
    RegCloseKey(key);
    const std::string text = ReadWholeFile(File());
    EXPECT_THAT(text, HasSubstr("; of the key\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Noted]\n; of v\n\"v\"=\"1\"\n"));
    EXPECT_TRUE(text.ends_with("; end\n"));
}

TEST(RegistryFile, ThatIsDamagedIsReadWhereItCanBeAndNeverOverwritten) {
    const std::string sound = "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Sound]\n\"v\"=\"1\"\n";
    const std::string damages[] = {
        kHeader + sound + "\"open=1\n",
        kHeader + sound + "\"n\"=dword:xyz\n",
        kHeader + sound + "\"n\"=hex:1,2,zz\n",
        kHeader + sound + "[-HKEY_LOCAL_MACHINE\\SOFTWARE\\Gone]\n",
        kHeader + "\"orphan\"=\"1\"\n" + sound,
        kHeader + sound + "\"b\"=\"\xFF\"\n",
        "REGEDIT4\n" + sound,
    };
    for (const std::string& damaged : damages) {
        WriteWholeFile(File(), damaged);
        EXPECT_EQ(QueryText("SOFTWARE\\Sound", "v"), "1");
        HKEY key;
        EXPECT_EQ(Create("SOFTWARE\\Other", &key), ERROR_BADDB) << damaged;
        EXPECT_EQ(ReadWholeFile(File()), damaged);
    }
}

// Modules that register themselves again say what is known.
TEST(RegistryFile, IsNotWrittenForAValueThatIsSetAgain) {
    HKEY key;
    ASSERT_EQ(Create("SOFTWARE\\Again", &key), 0);
    const auto set = [key](BYTE value) { return RegSetValueExA(key, "v", 0, REG_BINARY, &value, 1); };
    ASSERT_EQ(set(1), ERROR_SUCCESS);
    std::filesystem::create_hard_link(File(), File() + ".seen");
    EXPECT_EQ(set(1), ERROR_SUCCESS);
    EXPECT_TRUE(std::filesystem::equivalent(File(), File() + ".seen"));
    EXPECT_EQ(set(2), ERROR_SUCCESS);
    EXPECT_FALSE(std::filesystem::equivalent(File(), File() + ".seen"));
    RegCloseKey(key);
}

TEST(RegistryFile, RefusesNamesThatItCannotHold) {
    HKEY key;
    EXPECT_EQ(Create("SOFTWARE\\two\nlines", &key), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(Create(std::string(256, 'x').c_str(), &key), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(Create("\\SOFTWARE", &key), ERROR_BAD_PATHNAME);
}

TEST(RegistryFile, SaysWhichNarrowCodePageTheHomeHas) {
    WriteWholeFile(File(), kHeader +
                               "[HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control\\Nls\\CodePage]\n"
                               "\"ACP\"=\"65001\"\n"
                               "[HKEY_LOCAL_MACHINE\\SOFTWARE\\\xC3\x89]\n\"v\"=\"\xE2\x82\xAC\"\n");
    EXPECT_EQ(QueryText("SOFTWARE\\\xC3\xA9", "v"), "\xE2\x82\xAC");
    EXPECT_EQ(GetACP(), UINT{CP_UTF8});
}

}  // namespace
