#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <windows.h>

#include <string>
#include <thread>
#include <vector>

#include "tests/platform/processes/Peer.h"
#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

UINT ReadFrom(const std::string& path) { return GetPrivateProfileIntA("a", "b", 7, path.c_str()); }

TEST(IniFilesOnLinux, OfAnyContentAreReadToTheEnd) {
    const std::string path = InHome("strange.ini");
    WriteWholeFile(path, "[[[\n]=\n=\n[a\nx" + std::string(1000, '\0') + "=\n[a]\n" + std::string(100'000, '=') +
                             "\n\xFF\xFE=1\nb=3");
    EXPECT_EQ(ReadFrom(path), 7U);
    WriteWholeFile(path, "\xEF\xBB\xBF[a]\nb=3");
    EXPECT_EQ(ReadFrom(path), 3U);
}

TEST(IniFilesOnLinux, ThatAreNoFilesOrTooLargeGiveTheDefault) {
    EXPECT_EQ(ReadFrom("/dev/zero"), 7U);
    EXPECT_EQ(ReadFrom(HomePath()), 7U);
    WriteWholeFile(InHome("large.ini"), "[a]\nb=3\n");
    ASSERT_EQ(truncate(InHome("large.ini").c_str(), off_t{1} << 40), 0);
    EXPECT_EQ(ReadFrom(InHome("large.ini")), 7U);
}

TEST(IniFilesOnLinux, RefuseWhatWouldReadAsSomethingElse) {
    const std::string path = InHome("kept.ini");
    const std::string text = "[a]\nb=3\n";
    WriteWholeFile(path, text);
    const struct {
        const char *section, *key, *value;
    } cases[] = {
        {"a", "b", "1\n[x]"}, {"a", "b", "1\r"},  {"a", "b=c", "1"},    {"a", ";b", "1"}, {"a", " \t;b", "1"},
        {"a", "[x]", "1"},    {"a", " [x]", "1"}, {"a", "\v\f[x", "1"}, {"a", "", "1"},   {"a", "  ", "1"},
        {"a]", "b", "1"},     {"a\n", "b", "1"},  {"", "b", "1"},
    };
    for (const auto& each : cases) {
        EXPECT_FALSE(WritePrivateProfileStringA(each.section, each.key, each.value, path.c_str())) << each.key;
        EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER}) << each.key;
    }
    EXPECT_EQ(ReadWholeFile(path), text);
}

TEST(IniFilesOnLinux, KeepLayoutAndModeWhenChanged) {
    const struct {
        const char *before, *section, *key, *value, *after;
    } cases[] = {
        {"; top\n[a]\nb = 1\n\n[c]\nd=2", "a", "new", "5", "; top\n[a]\nb = 1\nnew=5\n\n[c]\nd=2"},
        {"[c]\nd=2", "e", "f", "6", "[c]\nd=2\n[e]\nf=6\n"},
        {"[c]\r\nd=2", "c", "f", "6", "[c]\r\nd=2\r\nf=6\r\n"},
        {"", "c", "f", " \"x\"", "[c]\r\nf= \"x\"\r\n"},
        {"[c]\nd=2\n\n[e]\nf=6\n", "c", nullptr, nullptr, "[e]\nf=6\n"},
        {"[c]\nd=2\ne=3\n", "c", "d", nullptr, "[c]\ne=3\n"},
        {"[c]\nd=2\n", "x", nullptr, nullptr, "[c]\nd=2\n"},
        {"[c]\nd=2\n", "c", "x", nullptr, "[c]\nd=2\n"},
    };
    const std::string path = InHome("layout.ini");
    for (const auto& each : cases) {
        WriteWholeFile(path, each.before);
        chmod(path.c_str(), 0640);
        EXPECT_TRUE(WritePrivateProfileStringA(each.section, each.key, each.value, path.c_str()));
        EXPECT_EQ(ReadWholeFile(path), each.after);
        struct stat status {};
        stat(path.c_str(), &status);
        EXPECT_EQ(status.st_mode & 0777, 0640U);
    }
}

TEST(IniFilesOnLinux, LoseNoChangeOfSeveralWriters) {
    const std::string path = InHome("shared.ini");
    std::vector<std::thread> writers;
    for (int writer = 0; writer < 4; ++writer) {
        writers.emplace_back([writer, &path] {
            for (int i = 0; i < 10; ++i) {
                const std::string key = std::to_string(writer) + "-" + std::to_string(i);
                EXPECT_TRUE(WritePrivateProfileStringA("all", key.c_str(), "1", path.c_str()));
            }
        });
    }
    for (std::thread& writer : writers) writer.join();
    for (int writer = 0; writer < 4; ++writer) {
        for (int i = 0; i < 10; ++i) {
            const std::string key = std::to_string(writer) + "-" + std::to_string(i);
            EXPECT_EQ(GetPrivateProfileIntA("all", key.c_str(), 0, path.c_str()), 1U) << key;
        }
    }
}

}  // namespace
}  // namespace wncom::test
