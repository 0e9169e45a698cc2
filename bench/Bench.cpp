#include "bench/Bench.h"

#include <stdlib.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <utility>
#include <vector>

#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

std::string MakeHome() {
    std::string path = (std::filesystem::temp_directory_path() / "wncom-bench-XXXXXX").string();
    if (!mkdtemp(path.data())) std::abort();
    // The layer reads the variable once, at its first use; nothing of it runs before main.
    setenv("WNCOM_HOME", path.c_str(), 1);
    return path;
}

}  // namespace

const std::string& HomePath() {
    static const std::string path = MakeHome();
    return path;
}

}  // namespace wncom::test

namespace wncom::bench {
namespace {

// Each row is one paired measurement, so the number of its iterations says nothing.
class Table final : public benchmark::ConsoleReporter {
public:
    Table() : ConsoleReporter(OO_Tabular) {}

    bool failed() const { return m_failed; }

    void ReportRuns(const std::vector<Run>& runs) override {
        std::vector<Run> shown = runs;
        for (Run& run : shown) {
            run.run_name.iterations.clear();
            m_failed = m_failed || run.error_occurred;
        }
        ConsoleReporter::ReportRuns(shown);
    }

private:
    bool m_failed = false;
};

}  // namespace

void Register(const std::string& name, std::function<void(benchmark::State&)> body) {
    benchmark::RegisterBenchmark(name.c_str(),
                                 [body = std::move(body)](benchmark::State& state) {
                                     try {
                                         for ([[maybe_unused]] auto once : state) body(state);
                                     } catch (const std::exception& failure) {
                                         state.SkipWithError(failure.what());
                                     }
                                 })
        ->Iterations(1)
        ->Unit(benchmark::kMillisecond);
}

void Report(benchmark::State& state, const PairedResult& result, std::optional<double> aim) {
    // Shown in the order of their names.
    state.counters["ours ns"] = result.ours;
    state.counters["peer ns"] = result.peers;
    state.counters["times"] = result.ratio;
    state.counters["times 25%"] = result.low;
    state.counters["times 75%"] = result.high;
    if (!aim) return;
    char label[64];
    std::snprintf(label, sizeof(label), "aim %g, %s", *aim, result.ratio >= *aim ? "met" : "missed");
    state.SetLabel(label);
}

int Run(int argc, char** argv) {
    const std::string home = test::HomePath();
    benchmark::Initialize(&argc, argv);
    bool failed = benchmark::ReportUnrecognizedArguments(argc, argv);
    if (!failed) {
        Table table;
        benchmark::RunSpecifiedBenchmarks(&table);
        failed = table.failed();
    }
    std::filesystem::remove_all(home);
    return failed ? 1 : 0;
}

}  // namespace wncom::bench
