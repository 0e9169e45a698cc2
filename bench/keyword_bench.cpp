// The scan of a submit response for a keyword, the whole call, against a plain loop to the same place.
#include <wchar.h>

#include <string>
#include <string_view>

#include "agent/SubmitResponse.h"
#include "bench/Bench.h"
#include "tests/support/Com.h"

namespace wncom::bench {
namespace {

constexpr std::size_t kPairs = 201;
constexpr std::size_t kScans = 20;
constexpr std::size_t kBytes = std::size_t{64} << 10;
constexpr double kAim = 5;

// Elements such as devices send, none of them under the keywords, then the job's address.
std::basic_string<WCHAR> Response() {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?><Response>";
    const std::string last = "<JobUri>http://127.0.0.1/jobs/1</JobUri></Response>";
    for (std::size_t i = 0; text.size() + last.size() < kBytes; ++i) {
        text += "<Status index=\"" + std::to_string(i) +
                "\"><Name>input tray</Name><State>Job is pending, paper: A4</State></Status>\n";
    }
    return test::Wide(text + last);
}

std::size_t PlainScan(std::basic_string_view<WCHAR> text, std::basic_string_view<WCHAR> keyword) {
    const std::size_t places = text.size() - keyword.size() + 1;
    for (std::size_t at = 0; at != places; ++at) {
        if (text[at] == keyword[0] && _wcsnicmp(text.data() + at, keyword.data(), keyword.size()) == 0) return at;
    }
    return places;
}

void KeywordScan(benchmark::State& state) {
    const auto response = Response();
    const std::basic_string<WCHAR> keyword = OLESTR("JobUri");
    Require(test::Narrow(ParseSubmitResponse(response, keyword.c_str(), nullptr).get()) == "http://127.0.0.1/jobs/1",
            "the address is not found");
    Report(state,
           ComparePairs(
               kPairs, kScans,
               [&] {
                   for (std::size_t i = 0; i != kScans; ++i) {
                       benchmark::DoNotOptimize(ParseSubmitResponse(response, keyword.c_str(), nullptr).get());
                   }
               },
               [&] {
                   for (std::size_t i = 0; i != kScans; ++i) {
                       benchmark::DoNotOptimize(PlainScan(response, keyword));
                   }
               }),
           kAim);
}

}  // namespace
}  // namespace wncom::bench

int main(int argc, char** argv) {
    using namespace wncom::bench;
    Register("keyword scan of 64 KB / plain loop", KeywordScan);
    return Run(argc, argv);
}
