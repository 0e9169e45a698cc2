// What every benchmark program shares: a home of its own, and Google Benchmark as the runner and printer of paired
// measurements.
#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <optional>
#include <string>

#include "bench/PairedRatio.h"
#include "bench/Require.h"

namespace wncom::bench {

// Registers a benchmark. Its body runs once, takes one paired measurement and reports it; what it throws fails the
// program.
void Register(const std::string& name, std::function<void(benchmark::State&)> body);

// Shows a measurement as the counters of a benchmark, and whether ours was as many times as fast as it is meant to
// be.
void Report(benchmark::State& state, const PairedResult& result, std::optional<double> aim = std::nullopt);

// A main: makes the home, runs what is registered and the command line selects, and removes the home. Returns the
// exit code.
int Run(int argc, char** argv);

}  // namespace wncom::bench
