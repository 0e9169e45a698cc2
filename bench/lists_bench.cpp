// What an item of a list costs in a long list beside a short one: the copy of a remote list, and the document of a
// list.
#include <memory>
#include <string>
#include <vector>

#include "agent/Array2XML.h"
#include "bench/Bench.h"
#include "bridge/RemoteList.h"

namespace wncom::bench {
namespace {

constexpr std::size_t kPairs = 31;
constexpr std::size_t kMost = 100000;
// The same cost, less what memory outside the processor's caches takes; anything that grew with the list would take
// far more.
constexpr double kAim = 0.8;

std::string Name(std::size_t number) { return "PrinterStateChangedEvent" + std::to_string(100000 + number); }

// Copies lists of so many items, until all of them together have kMost items.
auto Copies(std::size_t items) {
    auto* const elements = new CString[items];
    for (std::size_t i = 0; i != items; ++i) elements[i] = CString(Name(i).c_str());
    auto remote = std::make_shared<RemoteArray>();
    remote->Init(elements, static_cast<LONG>(items));
    return [=] {
        for (std::size_t done = 0; done != kMost; done += items) {
            PCharArray list;
            const LONG copied = RemoteArrayPtrToPCharArray(remote.get(), &list);
            Require(copied == static_cast<LONG>(items), "the list is not copied");
        }
    };
}

auto Documents(std::size_t items) {
    auto names = std::make_shared<std::vector<std::string>>();
    auto list = std::make_shared<std::vector<const char*>>();
    for (std::size_t i = 0; i != items; ++i) names->push_back(Name(i));
    for (const std::string& name : *names) list->push_back(name.c_str());
    list->push_back(nullptr);
    return [names, list, items] {
        for (std::size_t done = 0; done != kMost; done += items) {
            Require(Array2XML(list->data(), "SupportedEvents", "Event") != nullptr, "no document");
        }
    };
}

// The shorter list plays the peer.
template <class Work>
void RegisterLengths(const std::string& name, Work work) {
    for (const std::size_t items : {std::size_t{1000}, kMost}) {
        for (const std::size_t fewer : {std::size_t{10}, std::size_t{1000}}) {
            if (fewer == items) continue;
            Register(name + ", an item of " + std::to_string(items) + " / of " + std::to_string(fewer),
                     [=](benchmark::State& state) {
                         Report(state, ComparePairs(kPairs, kMost, work(items), work(fewer)), kAim);
                     });
        }
    }
}

}  // namespace
}  // namespace wncom::bench

int main(int argc, char** argv) {
    using namespace wncom::bench;
    RegisterLengths("list copy", Copies);
    RegisterLengths("Array2XML", Documents);
    return Run(argc, argv);
}
