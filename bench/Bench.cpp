#include "bench/Bench.h"

#include <cstdio>
#include <utility>
#include <vector>

#include "tests/support/Host.h"
#include "tests/support/TestHome.h"

namespace wncom::test {

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
    test::RemoveHome(home, false);
    return failed ? 1 : 0;
}

}  // namespace wncom::bench
