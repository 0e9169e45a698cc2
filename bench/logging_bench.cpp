// The logger against spdlog: a line to a file, a line to a file that two processes share, and a disabled line.
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>

#include "bench/Bench.h"
#include "common/logging/LoggingInternals.h"
#include "tests/support/TestHome.h"

namespace wncom::bench {
namespace {

constexpr std::size_t kPairs = 51;
constexpr std::size_t kLines = 5000;
constexpr std::size_t kDisabledLines = 2000000;
constexpr std::size_t kProcesses = 2;

// Both write date, time, process, thread, level and about 50 characters more: lines of about 100 bytes.
void OpenOurs(const std::string& path) { InitLogging(3, LogDestination::File, path.c_str(), 0); }
void OurLine(std::size_t number) {
    Log(3, "calling %s on mJobControl for the service at %s, %u\n", "SubmitJob", "http://127.0.0.1", number);
}

std::shared_ptr<spdlog::logger> OpenPeers(const std::string& path) {
    auto logger =
        std::make_shared<spdlog::logger>("CWendrel", std::make_shared<spdlog::sinks::basic_file_sink_mt>(path));
    logger->set_pattern("%m/%d/%y-%H:%M:%S,[%P:%t/%L] %n::%v");
    logger->set_level(spdlog::level::info);
    logger->flush_on(spdlog::level::trace);
    return logger;
}
void PeersLine(spdlog::logger& logger, std::size_t number) {
    logger.info("calling {} on mJobControl for the service at {}, {}", "SubmitJob", "http://127.0.0.1", number);
}

void CheckLines(const std::string& path, std::size_t expected) {
    std::ifstream file(path);
    std::size_t lines = 0;
    for (std::string line; std::getline(file, line); ++lines) {
        const bool whole = line.find("::calling SubmitJob on mJobControl") != std::string::npos;
        Require(whole, path + ": broken line: " + line);
    }
    Require(lines == expected,
            path + ": " + std::to_string(lines) + " lines, " + std::to_string(expected) + " expected");
}

// The time from the moment at which all processes are ready until the last one has ended.
template <class Open, class Write>
double TimeProcesses(Open open, Write write) {
    int ready[2];
    int gate[2];
    if (pipe(ready) != 0 || pipe(gate) != 0) std::exit(2);
    for (std::size_t i = 0; i != kProcesses; ++i) {
        if (fork() != 0) continue;
        close(gate[1]);
        auto log = open();
        char byte = 0;
        if (::write(ready[1], &byte, 1) != 1 || read(gate[0], &byte, 1) != 0) _exit(2);
        for (std::size_t line = 0; line != kLines; ++line) write(log, line);
        _exit(0);
    }
    char byte = 0;
    for (std::size_t i = 0; i != kProcesses; ++i) {
        if (read(ready[0], &byte, 1) != 1) std::exit(2);
    }
    auto run = [&] {
        close(gate[1]);
        for (std::size_t i = 0; i != kProcesses; ++i) {
            int status = 0;
            if (wait(&status) < 0 || status != 0) std::exit(2);
        }
    };
    const double time = TimeOf(run);
    for (const int end : {ready[0], ready[1], gate[0]}) close(end);
    return time;
}

// While this process has no log open that its children would share.
void SharedLine(benchmark::State& state) {
    const std::string ours = test::HomePath() + "/ours-shared.log";
    const std::string peers = test::HomePath() + "/peers-shared.log";
    const auto result = MeasurePairs(
        kPairs, kProcesses * kLines,
        [&] {
            return TimeProcesses(
                [&] {
                    OpenOurs(ours);
                    return 0;
                },
                [](int, std::size_t line) { OurLine(line); });
        },
        [&] {
            return TimeProcesses([&] { return OpenPeers(peers); },
                                 [](auto& logger, std::size_t line) { PeersLine(*logger, line); });
        });
    CheckLines(ours, (kPairs + 1) * kProcesses * kLines);
    CheckLines(peers, (kPairs + 1) * kProcesses * kLines);
    Report(state, result, 1);
}

void WrittenLine(benchmark::State& state) {
    const std::string ours = test::HomePath() + "/ours.log";
    const std::string peers = test::HomePath() + "/peers.log";
    OpenOurs(ours);
    const auto logger = OpenPeers(peers);
    const auto result = ComparePairs(
        kPairs, kLines,
        [] {
            for (std::size_t line = 0; line != kLines; ++line) OurLine(line);
        },
        [&] {
            for (std::size_t line = 0; line != kLines; ++line) PeersLine(*logger, line);
        });
    CloseLogging();
    CheckLines(ours, (kPairs + 1) * kLines);
    CheckLines(peers, (kPairs + 1) * kLines);
    Report(state, result, 1.3);
}

// Four lines a turn, so that the loop itself hardly counts.
void DisabledLine(benchmark::State& state) {
    OpenOurs(test::HomePath() + "/ours-disabled.log");
    const auto logger = OpenPeers(test::HomePath() + "/peers-disabled.log");
    Report(state,
           ComparePairs(
               kPairs, kDisabledLines,
               [] {
                   for (std::size_t line = 0; line != kDisabledLines; line += 4) {
                       WNCOM_LOG(4, "line %u of %s", line, "many");
                       WNCOM_LOG(4, "line %u of %s", line + 1, "many");
                       WNCOM_LOG(4, "line %u of %s", line + 2, "many");
                       WNCOM_LOG(4, "line %u of %s", line + 3, "many");
                   }
               },
               [&] {
                   for (std::size_t line = 0; line != kDisabledLines; line += 4) {
                       logger->debug("line {} of {}", line, "many");
                       logger->debug("line {} of {}", line + 1, "many");
                       logger->debug("line {} of {}", line + 2, "many");
                       logger->debug("line {} of {}", line + 3, "many");
                   }
               }),
           10);
    CloseLogging();
}

}  // namespace
}  // namespace wncom::bench

int main(int argc, char** argv) {
    using namespace wncom::bench;
    Register("line to a file, two processes / spdlog", SharedLine);
    Register("line to a file / spdlog", WrittenLine);
    Register("disabled line / spdlog", DisabledLine);
    return Run(argc, argv);
}
