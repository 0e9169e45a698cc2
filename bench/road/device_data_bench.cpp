// A read of a device document of 1 MB from a transport library that has it at hand: how often its bytes are copied,
// and what that costs beside one plain copy of the text that the client gets.
#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <string>

#include "bench/Bench.h"
#include "bench/road/Road.h"

namespace {

constexpr std::size_t kDocumentBytes = std::size_t{1} << 20;
std::atomic<std::size_t> g_largeBlocks{0};

}  // namespace

// In place of the C runtime's, for this program and its modules: each copy of the document needs a block for it.
// Blocks for copies come from nowhere else; operator new, too, takes them from here.
extern "C" void* __libc_malloc(std::size_t);
extern "C" void* __libc_calloc(std::size_t, std::size_t);
extern "C" void* __libc_realloc(void*, std::size_t);
extern "C" void* malloc(std::size_t size) {
    if (size >= kDocumentBytes) g_largeBlocks.fetch_add(1, std::memory_order_relaxed);
    return __libc_malloc(size);
}
extern "C" void* calloc(std::size_t count, std::size_t size) {
    if (count * size >= kDocumentBytes) g_largeBlocks.fetch_add(1, std::memory_order_relaxed);
    return __libc_calloc(count, size);
}
extern "C" void* realloc(void* old, std::size_t size) {
    if (size >= kDocumentBytes) g_largeBlocks.fetch_add(1, std::memory_order_relaxed);
    return __libc_realloc(old, size);
}

namespace wncom::bench {
namespace {

using namespace wncom::test;

constexpr std::size_t kPairs = 101;
constexpr std::size_t kReads = 4;
constexpr std::size_t kMostCopies = 3;

Bstr Document(IWNXDMAccess& access) {
    static const Bstr path = Text("/device");
    Bstr document;
    Require(access.GetData(path.get(), nullptr, nullptr, document.put()) == S_OK, "no document");
    return document;
}

void DeviceData(benchmark::State& state) {
    const Road road("none");
    const auto access = road.As<IWNXDMAccess>();
    const Bstr sample = Document(*access.get());
    Require(sample.length() == kDocumentBytes, "another document");

    const std::size_t before = g_largeBlocks;
    Document(*access.get());
    const std::size_t copies = g_largeBlocks - before;

    Report(state, ComparePairs(
                      kPairs, kReads,
                      [&] {
                          for (std::size_t i = 0; i != kReads; ++i) Document(*access.get());
                      },
                      [&] {
                          for (std::size_t i = 0; i != kReads; ++i) {
                              const Bstr copy(sample.view());
                              benchmark::DoNotOptimize(copy.get());
                          }
                      }));
    state.SetLabel(std::to_string(copies) + " copies, aim at most " + std::to_string(kMostCopies) + ", " +
                   (copies <= kMostCopies ? "met" : "missed"));
}

}  // namespace
}  // namespace wncom::bench

int main(int argc, char** argv) {
    using namespace wncom::bench;
    Register("device document of 1 MB / one copy of it", DeviceData);
    return Run(argc, argv);
}
