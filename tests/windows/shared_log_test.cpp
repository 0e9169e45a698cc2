// One log of processes of both bitnesses, some of which are killed.
#include <filesystem>
#include <map>
#include <regex>
#include <sstream>

#include "tests/platform/processes/Peer.h"
#include "tests/windows/WindowsFixture.h"

namespace wncom::test {
namespace {

struct Written {
    int next = 0;  // number of the next line
    int lost = 0;
};

class SharedLogTest : public WindowsTest {
protected:
    void SetUp() override {
        for (const int bits : {32, 64}) {
            if (BinFolder(bits).empty()) {
                GTEST_SKIP() << "no build of the other bitness in " << WNCOM_OTHER_BUILD
                             << ", or none that runs here";
            }
            SetLogging("file," + m_log + ",3", bits);
        }
        std::filesystem::create_directories(m_folder);
    }

    std::string ArgumentsOf(const std::string& name) const { return name + " \"" + m_folder + "\""; }
    static std::string PeerOf(int bits) { return BinFolder(bits) + "\\log_peer.exe"; }
    void AwaitStart(const std::string& name) const { AwaitFile(m_folder + "\\started-" + name); }

    // Every line of the file, whole, in the order of its writer.
    void ReadLog(std::map<std::string, Written>& writers) const {
        const std::regex form(R"(\d\d/\d\d/\d\d-\d\d:\d\d:\d\d,\[\d+:\d+/3\] LogPeer::(\w+) line (\d+) (\.*))");
        std::istringstream log(ReadWholeFile(m_log));
        for (std::string line; std::getline(log, line);) {
            if (line.ends_with('\r')) line.pop_back();
            std::smatch parts;
            ASSERT_TRUE(std::regex_match(line, parts, form)) << line;
            const int number = std::stoi(parts[2]);
            ASSERT_EQ(parts[3].length(), number % 97) << line;
            Written& writer = writers[parts[1]];
            ASSERT_GE(number, writer.next) << line;
            writer.lost += number - writer.next;
            writer.next = number + 1;
        }
    }

    const std::string m_folder = HomePath() + "\\peers";
    const std::string m_log = HomePath() + "\\shared.log";
};

TEST_F(SharedLogTest, KeepsEveryLineOfBothBitnesses) {
    {
        Peer first(ArgumentsOf("stays32"), PeerOf(32));
        Peer second(ArgumentsOf("stays64"), PeerOf(64));
        AwaitStart("stays32");
        AwaitStart("stays64");
        int count = 0;
        for (const int bits : {64, 32, 64, 32}) {
            const std::string name = "killed" + std::to_string(++count);
            Peer victim(ArgumentsOf(name), PeerOf(bits));
            AwaitStart(name);
            victim.Kill();
        }
        WriteWholeFile(m_folder + "\\finish", "");
        EXPECT_EQ(first.Result(), 0U);
        EXPECT_EQ(second.Result(), 0U);
    }
    std::map<std::string, Written> writers;
    ReadLog(writers);
    EXPECT_EQ(writers.size(), 6U);
    for (const char* name : {"stays32", "stays64"}) {
        int lines = 0;
        int waits = 0;
        std::istringstream(ReadWholeFile(m_folder + "\\lines-" + name)) >> lines >> waits;
        const Written& writer = writers[name];
        EXPECT_GT(lines, 20) << name;
        EXPECT_LE(writer.lost + lines - writer.next, waits) << name << " lost more than it waited for";
    }
    for (int i = 1; i <= 4; ++i) EXPECT_EQ(writers["killed" + std::to_string(i)].lost, 0) << i;
}

}  // namespace
}  // namespace wncom::test
