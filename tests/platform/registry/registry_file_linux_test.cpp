// The registry's file, as a person reads and edits it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <windows.h>

#include <filesystem>
#include <functional>
#include <map>
#include <random>
#include <string>

#include "tests/platform/registry/Key.h"
#include "tests/support/TestHome.h"

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using testing::EndsWith;
using testing::HasSubstr;
using wncom::test::Get;
using wncom::test::GetText;
using wncom::test::HomePath;
using wncom::test::Key;
using wncom::test::ReadWholeFile;
using wncom::test::Set;
using wncom::test::SetText;
using wncom::test::WriteWholeFile;

const std::string kHeader = "Windows Registry Editor Version 5.00\n";
const std::string kSound = kHeader + "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Sound]\n\"v\"=\"1\"\n";

std::string File() { return HomePath() + "/registry.reg"; }

TEST(RegistryFile, TellsEachChangeInReadableLinesAtItsEnd) {
    WriteWholeFile(File(), kSound);
    const Key key("SOFTWARE\\Readable");
    ASSERT_EQ(SetText(key.get(), "", "d\xE9j\xE0"), 0);
    ASSERT_EQ(SetText(key.get(), "path", "C:\\a \"b\""), 0);
    ASSERT_EQ(Set(key.get(), "number", "\x1F\0\0\0"s, REG_DWORD), 0);
    ASSERT_EQ(Set(key.get(), "open", "ab", REG_SZ), 0);
    ASSERT_EQ(Set(key.get(), "open", "ab", REG_SZ), 0);
    ASSERT_EQ(RegDeleteValueA(key.get(), "PATH"), 0);
    ASSERT_EQ(RegDeleteTreeA(HKEY_LOCAL_MACHINE, "software\\readable"), 0);
    const std::string path = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Readable]\n";
    EXPECT_EQ(ReadWholeFile(File()), kSound + "\n[" + path + "\n[" + path + "@=\"d\xC3\xA9j\xC3\xA0\"\n\n[" + path +
                                         "\"path\"=\"C:\\\\a \\\"b\\\"\"\n\n[" + path +
                                         "\"number\"=dword:0000001f\n\n[" + path + "\"open\"=hex(1):61,62\n\n[" +
                                         path + "\"PATH\"=-\n\n[-" + path);
}

TEST(RegistryFile, IsReadAsAPersonWritesIt) {
    WriteWholeFile(File(),
                   "\xEF\xBB\xBF" + kHeader +
                       "\r\n; a note\r\n[hkey_local_machine\\software\\Hand]\r\n"
                       "@=\"x\"\r\n\"Path\" = \"C:\\dir\\file\"\r\n\"bytes\"=hex:01,\\\r\n  02\r\n\"gone\"=\"1\"\n"
                       "[HKEY_CLASSES_ROOT\\Hand.Class]\n@=\"class\"\n"
                       "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Gone\\Below]\n[-HKEY_LOCAL_MACHINE\\SOFTWARE\\Gone]\n"
                       "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Hand]\n@=\"later\"\n\"GONE\"=-\n\"end\"=dword:1F");
    EXPECT_EQ(GetText("SOFTWARE\\Hand", "bytes"), "\x01\x02");
    EXPECT_EQ(GetText("SOFTWARE\\Hand", "path"), "C:\\dir\\file");
    EXPECT_EQ(GetText("SOFTWARE\\Hand", ""), "later");
    EXPECT_EQ(GetText("SOFTWARE\\Hand", "gone"), "(2)");
    EXPECT_EQ(GetText("SOFTWARE\\Hand", "end"), "\x1F");
    EXPECT_EQ(GetText("SOFTWARE\\Gone\\Below", ""), "(2)");
    EXPECT_EQ(GetText("SOFTWARE\\Classes\\hand.class", nullptr), "class");
    // A change does not grow together with a last line that has no end.
    const Key key("SOFTWARE\\New");
    EXPECT_THAT(ReadWholeFile(File()), EndsWith("\"end\"=dword:1F\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\New]\n"));
}

TEST(RegistryFile, IsSeenToBeChangedHoweverAnEditorDoesIt) {
    const auto text = [](const std::string& value) {
        return kHeader + "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Edited]\n\"v\"=\"" + value + "\"\n";
    };
    const auto link = [&](const std::string& value) {
        WriteWholeFile(File() + "." + value, text(value));
        fs::remove(File());
        fs::create_symlink(File() + "." + value, File());
    };
    const struct {
        const char* value;
        std::function<void()> edit;
    } edits[] = {
        {"one", [&] { WriteWholeFile(File(), text("one")); }},
        {"three", [&] { WriteWholeFile(File(), text("three")); }},
        // The same length, and what is added looks like a change.
        {"fours", [&] { WriteWholeFile(File(), text("fours") + "\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Other]\n"); }},
        {"five", [&] { WriteWholeFile(File(), ReadWholeFile(File()) + text("five").substr(kHeader.size())); }},
        {"six",
         [&] {
             WriteWholeFile(File() + ".6", text("six"));
             fs::rename(File() + ".6", File());
         }},
        {"seven",
         [&] {
             fs::rename(File(), File() + ".backup");
             WriteWholeFile(File(), text("seven"));
         }},
        // A link leads to other files while each of them stays as it is.
        {"8", [&] { link("8"); }},
        {"9", [&] { link("9"); }},
        {"(2)", [&] { fs::remove(File()); }},
    };
    for (const auto& each : edits) {
        each.edit();
        EXPECT_EQ(GetText("SOFTWARE\\Edited", "v"), each.value);
    }
}

TEST(RegistryFile, ThatIsDamagedIsReadWhereItCanBeAndNeverOverwritten) {
    std::string deep = "[HKEY_LOCAL_MACHINE";
    for (int level = 0; level < 30000; ++level) deep += "\\x";
    const std::string damages[] = {
        kSound + "\"open=1\n",
        kSound + "\"n\"=dword:xyz\n",
        kSound + "\"n\"=hex:1,2,zz\n",
        kSound + "\"n\" \"1\"\n",
        kSound + "[SOFTWARE\\NoRoot]\n",
        kSound + "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Open\n",
        kSound + "[-HKEY_LOCAL_MACHINE\\SOFTWARE]\n",
        kSound + "[-HKEY_LOCAL_MACHINE]\n",
        kSound + "[-HKEY_LOCAL_MACHINE\\SOFTWARE\\Gone]\n\"orphan\"=\"1\"\n",
        kSound + "\"b\"=\"\xFF\"\n",
        kSound + "\"a,\\\n\xFF\"=\"1\"\n",
        kSound + "; \xFF\n",
        kSound + "\0\0[HKEY_LOCAL_MACHINE\\SOFTWARE\\Zeros]\n"s,
        kSound + "\0neither\n"s,
        kSound + deep + "]\n",
        kHeader + "\"orphan\"=\"1\"\n" + kSound.substr(kHeader.size()),
        "REGEDIT4\n" + kSound.substr(kHeader.size()),
    };
    for (const std::string& damaged : damages) {
        SCOPED_TRACE(damaged.substr(0, 300));
        WriteWholeFile(File(), damaged);
        EXPECT_EQ(GetText("SOFTWARE\\Sound", "v"), "1");
        HKEY key;
        EXPECT_EQ(
            RegCreateKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Other", 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr),
            ERROR_BADDB);
        EXPECT_EQ(ReadWholeFile(File()), damaged);
    }
}

TEST(RegistryFile, IsReadWithoutAChangeThatAKilledWriterLeft) {
    const std::string change = "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Sound]\n\"v\"=\"2\"\n";
    for (std::size_t length = 1; length <= change.size(); ++length) {
        const std::string left = kSound + '\0' + change.substr(0, length);
        WriteWholeFile(File(), left);
        EXPECT_EQ(GetText("SOFTWARE\\Sound", "v"), "1");
    }
    // The last byte makes it one.
    WriteWholeFile(File(), kSound + '\n' + change);
    EXPECT_EQ(GetText("SOFTWARE\\Sound", "v"), "2");

    WriteWholeFile(File(), kSound + '\0' + change + change);
    const Key key("SOFTWARE\\Next");
    EXPECT_EQ(ReadWholeFile(File()), kSound + "\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Next]\n");
    EXPECT_EQ(GetText("SOFTWARE\\Sound", "v"), "1");
}

TEST(RegistryFile, StaysAsItIsWhenAChangeDoesNotFit) {
    WriteWholeFile(File(), kSound);
    const Key key("SOFTWARE\\Sound");
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    for (const std::size_t room : {0U, 1U, 10U}) {
        const rlimit small{kSound.size() + room, limit.rlim_max};
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
        EXPECT_NE(SetText(key.get(), "v", "2"), ERROR_SUCCESS);
        setrlimit(RLIMIT_FSIZE, &limit);
        EXPECT_EQ(ReadWholeFile(File()), kSound);
        EXPECT_EQ(GetText("SOFTWARE\\Sound", "v"), "1");
    }
    EXPECT_EQ(SetText(key.get(), "v", "2"), ERROR_SUCCESS);
    EXPECT_EQ(GetText("SOFTWARE\\Sound", "v"), "2");
}

TEST(RegistryFile, IsWrittenAnewWhenChangesHaveOutgrownTheRest) {
    WriteWholeFile(File(),
                   kHeader + "\n; of the key\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Noted]\n; of v\n\"v\"=\"1\"\n; end\n");
    chmod(File().c_str(), 0600);
    const Key key("SOFTWARE\\Growing"), gone("SOFTWARE\\Growing\\Gone");
    ASSERT_EQ(RegDeleteTreeA(key.get(), "Gone"), 0);
    for (int i = 0; i < 400; ++i) {
        ASSERT_EQ(SetText(key.get(), "v", std::to_string(i) + std::string(500, 'x')), 0);
        ASSERT_LT(fs::file_size(File()), 20000U);
    }
    EXPECT_EQ(Get(key.get(), "v"), "399" + std::string(500, 'x') + '\0');
    const std::string text = ReadWholeFile(File());
    EXPECT_THAT(text, HasSubstr("; of the key\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Noted]\n; of v\n\"v\"=\"1\"\n"));
    EXPECT_THAT(text, HasSubstr("; end\n"));
    struct stat file;
    ASSERT_EQ(stat(File().c_str(), &file), 0);
    EXPECT_EQ(file.st_mode & 0777, 0600U);
}

// What this process knows from its own changes against what the file says to one that reads it from the start.
TEST(RegistryFile, SaysTheSameToWhoeverReadsItFromTheStart) {
    constexpr unsigned seed = 20;
    std::mt19937 random(seed);
    const auto pick = [&random](std::size_t count) { return random() % count; };
    const std::string keys[] = {"a", "a\\b", "a\\b\\c]", "d \"e\" = ", "; f", "-g"};
    const std::string names[] = {"", "v", "a \"b\" \\", "[x]", "=-", "; y"};
    const std::string values[] = {"", "-", "C:\\", "\"q\"", "hex:00", "two\nlines"};
    std::map<std::string, std::map<std::string, std::string>> model;
    const auto check = [&] {
        for (const std::string& key : keys) {
            for (const std::string& name : names) {
                const auto known = model.find(key);
                const bool present = known != model.end() && known->second.contains(name);
                EXPECT_EQ(GetText(("SOFTWARE\\Random\\" + key).c_str(), name.c_str()),
                          present ? known->second.at(name) : "(2)")
                    << "seed " << seed << ", " << key << ", " << name;
            }
        }
    };
    for (int round = 0; round < 300; ++round) {
        const std::string& name = keys[pick(std::size(keys))];
        if (pick(4) == 0) {
            RegDeleteTreeA(HKEY_LOCAL_MACHINE, ("SOFTWARE\\Random\\" + name).c_str());
            std::erase_if(model,
                          [&](const auto& key) { return key.first == name || key.first.starts_with(name + "\\"); });
        } else {
            const Key key("SOFTWARE\\Random\\" + name);
            const std::string& value = names[pick(std::size(names))];
            if (pick(4) == 0) {
                RegDeleteValueA(key.get(), value.c_str());
                model[name].erase(value);
            } else {
                const std::string& text = values[pick(std::size(values))];
                ASSERT_EQ(SetText(key.get(), value.c_str(), text), 0);
                model[name][value] = text;
            }
        }
        if (round % 20 != 0) continue;
        check();
        fs::copy_file(File(), File() + ".copy", fs::copy_options::overwrite_existing);
        fs::rename(File() + ".copy", File());
        check();
    }
}

TEST(RegistryFile, RefusesNamesThatItCannotHold) {
    std::string deepest = "SOFTWARE";
    for (int level = 2; level < 512; ++level) deepest += "\\x";
    const struct {
        std::string path;
        LSTATUS status;
    } names[] = {
        {"SOFTWARE\\two\nlines", ERROR_INVALID_PARAMETER},
        {std::string(255, 'x'), ERROR_SUCCESS},
        {std::string(256, 'x'), ERROR_INVALID_PARAMETER},
        {"\\SOFTWARE", ERROR_BAD_PATHNAME},
        {deepest, ERROR_SUCCESS},
        {deepest + "\\x", ERROR_INVALID_PARAMETER},
    };
    for (const auto& each : names) {
        HKEY key;
        EXPECT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, each.path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                                  nullptr),
                  each.status)
            << each.path;
        RegCloseKey(key);
    }
    EXPECT_EQ(SetText(Key("SOFTWARE").get(), "two\nlines", ""), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegDeleteTreeA(HKEY_LOCAL_MACHINE, "SOFTWARE"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegDeleteTreeA(HKEY_LOCAL_MACHINE, nullptr), ERROR_INVALID_PARAMETER);
}

TEST(RegistryFile, SaysWhichNarrowCodePageTheHomeHas) {
    WriteWholeFile(File(), kHeader +
                               "[HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control\\Nls\\CodePage]\n"
                               "\"ACP\"=\"65001\"\n"
                               "[HKEY_LOCAL_MACHINE\\SOFTWARE\\\xC3\x89]\n\"v\"=\"\xE2\x82\xAC\"\n");
    EXPECT_EQ(GetText("SOFTWARE\\\xC3\xA9", "v"), "\xE2\x82\xAC");
    EXPECT_EQ(GetACP(), UINT{CP_UTF8});
}

}  // namespace
