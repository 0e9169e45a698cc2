// A traced call below level 5, which makes its identifier all the same, against the plain way to make one: a system
// call for randomness and snprintf.
#include <sys/random.h>

#include <array>
#include <cstdio>

#include "bench/Bench.h"
#include "wncom/Logging.h"
#include "wncom/TraceScope.h"

namespace wncom::bench {
namespace {

constexpr std::size_t kPairs = 101;
constexpr std::size_t kCalls = 5000;
constexpr double kAim = 14;

void PlainIdentifier() {
    std::array<unsigned char, 16> r;
    Require(getrandom(r.data(), r.size(), 0) == 16, "no randomness");
    char text[39];
    std::snprintf(text, sizeof(text), "{%02X%02X%02X%02X-%02X%02X-%02X%02X-%02X%02X-%02X%02X%02X%02X%02X%02X}", r[0],
                  r[1], r[2], r[3], r[4], r[5], (r[6] & 0x0FU) | 0x40U, r[7], (r[8] & 0x3FU) | 0x80U, r[9], r[10],
                  r[11], r[12], r[13], r[14], r[15]);
    benchmark::DoNotOptimize(text);
}

void TracedCall(benchmark::State& state) {
    Require(LogLevel < 5, "the log is open");
    Report(state,
           ComparePairs(
               kPairs, kCalls,
               [] {
                   for (std::size_t i = 0; i != kCalls; ++i) const TraceScope scope("Bench::Call", "bench", __LINE__);
               },
               [] {
                   for (std::size_t i = 0; i != kCalls; ++i) PlainIdentifier();
               }),
           kAim);
}

}  // namespace
}  // namespace wncom::bench

int main(int argc, char** argv) {
    using namespace wncom::bench;
    Register("TraceScope below level 5 / system call and snprintf", TracedCall);
    return Run(argc, argv);
}
