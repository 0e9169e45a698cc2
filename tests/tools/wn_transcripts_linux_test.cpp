// Whole conversations with wn, as files of command lines and what they print.
//
// A line that begins with "$ " goes to the shell, which finds wn on its path and the variables $home, $bin, $samples
// and $device. Below it stand its standard output, then its standard error after "2> ", then its status in brackets
// when that is not 0. "% device ARGUMENTS" starts a device service, "% end" ends it, and "#" begins a comment. What
// varies is masked. WNCOM_UPDATE_TRANSCRIPTS=1 writes the files anew; read the difference before it is kept.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <regex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/DeviceProcess.h"
#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

class TranscriptTest : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        for (const auto& entry : std::filesystem::directory_iterator(HomePath())) {
            std::filesystem::remove_all(entry.path());
        }
        setenv("home", HomePath().c_str(), 1);
        setenv("bin", ProgramFolder().c_str(), 1);
        setenv("samples", WNCOM_SAMPLES, 1);
        setenv("PATH", (ProgramFolder() + ":" + std::getenv("PATH")).c_str(), 1);
    }

    void Direct(const std::string& line) {
        const std::regex words("\\S+");
        const std::string all = Expanded(line.substr(2));
        std::vector<std::string> arguments(std::sregex_token_iterator(all.begin(), all.end(), words),
                                           std::sregex_token_iterator());
        const std::string verb = arguments.at(0);
        arguments.erase(arguments.begin());
        m_device.reset();
        if (verb != "device") return;
        m_device = std::make_unique<DeviceProcess>(arguments);
        m_address = m_device->Address();
        setenv("device", m_address.c_str(), 1);
    }

    // What the shell makes of the command line, in the form of the transcript.
    std::string Run(const std::string& line) const {
        const std::string script = HomePath() + "/.line";
        WriteWholeFile(script, line.substr(2) + "\n");
        const int status = std::system(("cd '" + HomePath() + "' && sh .line >.out 2>.err </dev/null").c_str());
        std::string told = ReadWholeFile(HomePath() + "/.out");
        if (!told.empty() && told.back() != '\n') told += "\n";
        for (const std::string& error : Lines(ReadWholeFile(HomePath() + "/.err"))) told += "2> " + error + "\n";
        if (WEXITSTATUS(status) != 0) told += "[" + std::to_string(WEXITSTATUS(status)) + "]\n";
        return Masked(told);
    }

private:
    std::string Expanded(std::string text) const {
        for (std::size_t at; (at = text.find("$home")) != std::string::npos;) text.replace(at, 5, HomePath());
        return text;
    }
    static std::string Replaced(std::string text, const std::string& what, const std::string& with) {
        for (std::size_t at = 0; !what.empty() && (at = text.find(what, at)) != std::string::npos;
             at += with.size()) {
            text.replace(at, what.size(), with);
        }
        return text;
    }
    std::string Masked(std::string text) const {
        text = Replaced(text, HomePath(), "~");
        text = Replaced(text, ProgramFolder(), "BIN");
        text = Replaced(text, m_address, "DEVICE");
        text = Replaced(text, WNCOM_SAMPLES, "SAMPLES");
        constexpr std::pair<const char*, const char*> kVarying[] = {
            {"[0-9a-f]{32}", "ID"},
            {"127\\.0\\.0\\.1([: ]|:? port )[0-9]{4,5}", "127.0.0.1$1PORT"},
            {"(\"seconds\": |bytes in )[0-9][0-9.e-]*", "$1N"},
            {"[0-9]+ milliseconds", "N milliseconds"},
            {"20\\d\\d-[0-9T:-]+Z", "TIME"},
            {"(came in|after) [0-9]+ ms", "$1 N ms"},
        };
        for (const auto& [pattern, with] : kVarying) {
            text = std::regex_replace(text, std::regex(pattern), with);
        }
        return text;
    }

    std::unique_ptr<DeviceProcess> m_device;
    std::string m_address;
};

TEST_P(TranscriptTest, PrintsWhatTheTranscriptSays) {
    const std::string path = std::string(WNCOM_TRANSCRIPTS "/") + GetParam() + ".txt";
    const std::string transcript = ReadWholeFile(path);
    ASSERT_NE(transcript, "") << path;
    const std::vector<std::string> lines = Lines(transcript);
    std::string whole;
    for (std::size_t i = 0; i < lines.size();) {
        const std::string line = lines[i++];
        whole += line + "\n";
        if (line.starts_with("% ")) Direct(line);
        if (!line.starts_with("$ ")) continue;
        std::string expected;
        while (i < lines.size() && !lines[i].starts_with("$ ") && !lines[i].starts_with("% ") &&
               !lines[i].starts_with("#")) {
            expected += lines[i++] + "\n";
        }
        const std::string told = Run(line);
        if (!std::getenv("WNCOM_UPDATE_TRANSCRIPTS")) {
            EXPECT_EQ(told, expected) << "at: " << line;
        }
        whole += told;
    }
    if (std::getenv("WNCOM_UPDATE_TRANSCRIPTS")) WriteWholeFile(path, whole);
}

INSTANTIATE_TEST_SUITE_P(Wn, TranscriptTest,
                         testing::Values("settings", "portmap", "jobs", "service", "events", "refusals", "doctor"),
                         [](const auto& given) { return given.param; });

}  // namespace
}  // namespace wncom::test
