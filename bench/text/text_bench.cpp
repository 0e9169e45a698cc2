// The whole calls of the conversions against ICU, in the narrow code page 1252; with "--utf-8" as the first
// argument, what comes back from the service is read in UTF-8 instead.
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>

#include "bench/Bench.h"
#include "bench/text/Peers.h"
#include "bench/text/Samples.h"
#include "bridge/TextConversions.h"
#include "tests/support/Com.h"
#include "tests/support/TestHome.h"

namespace wncom::bench {
namespace {

constexpr std::size_t kPairs = 201;
constexpr std::size_t kSizes[] = {std::size_t{1} << 10, std::size_t{64} << 10, std::size_t{1} << 20};

double IcuAim(Script script) { return script == Script::Ascii ? 5 : 2; }

// Keeps the compiler from leaving out a conversion whose result nobody reads.
template <class Convert>
auto Repeat(std::size_t times, Convert convert) {
    return [=] {
        for (std::size_t i = 0; i != times; ++i) benchmark::DoNotOptimize(convert().get());
    };
}

template <class Ours, class Peers>
void Compare(benchmark::State& state, std::size_t bytes, double aim, Ours ours, Peers peers) {
    using Text = std::basic_string<std::remove_reference_t<decltype(ours()[0])>>;
    Require(Text(ours().get()) == Text(peers().get()), "ours and the peer's result differ");
    const std::size_t times = ConversionsInSlice(bytes);
    Report(state, ComparePairs(kPairs, times, Repeat(times, ours), Repeat(times, peers)), aim);
}

void Outgoing(Script script, std::size_t bytes) {
    const std::string name = std::string("WCharToUtf8 ") + NameOf(script) + " " + SizeName(bytes);
    const WideText text = Sample(script, bytes);
    const auto ours = [=] { return WCharToUtf8(text.c_str()); };
    Register(name + " / ICU", [=](benchmark::State& state) {
        Compare(state, bytes, IcuAim(script), ours, [&] { return IcuToUtf8(text.c_str()); });
    });
}

// The narrow text has so many bytes.
void Incoming(Script script, std::size_t bytes, bool utf8) {
    const std::string name =
        std::string("CStringToWChar ") + (utf8 ? "UTF-8 " : "1252 ") + NameOf(script) + " " + SizeName(bytes);
    const WideText wide = Sample(script, bytes);
    const CString text = utf8 ? CString(WCharToUtf8(wide.c_str()).get()) : CString(wide.c_str());
    const auto ours = [=] { return CStringToWChar(text); };
    Register(name + " / ICU", [=](benchmark::State& state) {
        if (utf8) {
            Compare(state, bytes, IcuAim(script), ours, [&] { return IcuFromUtf8(text); });
        } else {
            IcuCodePage peer("windows-1252");
            Compare(state, bytes, IcuAim(script), ours, [&] { return peer.Wide(text); });
        }
    });
}

}  // namespace
}  // namespace wncom::bench

int main(int argc, char** argv) {
    using namespace wncom::bench;
    const bool utf8 = argc > 1 && std::strcmp(argv[1], "--utf-8") == 0;
    if (utf8) {
        // The page is read once, so another process sets it.
        wncom::test::HomePath();
        const int child = fork();
        if (child == 0) {
            wncom::test::SetRegistryValue("SYSTEM\\CurrentControlSet\\Control\\Nls\\CodePage", "ACP", "65001");
            _exit(0);
        }
        waitpid(child, nullptr, 0);
        argv[1] = argv[0];
        --argc;
        ++argv;
    }
    for (const Script script : {Script::Ascii, Script::Latin, Script::Cjk}) {
        for (const std::size_t bytes : kSizes) {
            if (!utf8) Outgoing(script, bytes);
            if (utf8 || script != Script::Cjk) Incoming(script, bytes, utf8);
        }
    }
    return Run(argc, argv);
}
