// Paths over the device data: whatever is asked or set, answers are well-formed, a failed change changes nothing, and
// a value that was set is read again, by the next start of the device too.
#include <filesystem>
#include <stdexcept>

#include "fuzz/support/Fuzz.h"
#include "tools/wndevice/DeviceData.h"

using namespace wndevice;
using wncom::fuzz::Expect;

namespace {

constexpr const char* kPrefixes = "d=urn:wncom:device-data";

// Pieces of paths, so that many of them mean something.
std::string PickPath(FuzzedDataProvider& input) {
    constexpr const char* kPieces[] = {"/",
                                       "//",
                                       "*",
                                       "@",
                                       "d:deviceData",
                                       "d:tray",
                                       "d:sheets",
                                       "d:counters",
                                       "[1]",
                                       "[last()]",
                                       "[.='a']",
                                       "..",
                                       ".",
                                       "|",
                                       "q:",
                                       "text()",
                                       "count(",
                                       "contains(",
                                       "string(.)",
                                       ",'x')",
                                       ")",
                                       "/d:deviceData//d:sheets"};
    std::string path;
    for (int left = input.ConsumeIntegralInRange(1, 8); left > 0; --left) path += input.PickValueInArray(kPieces);
    return path + input.ConsumeRandomLengthString(4);
}

std::string Whole(const DeviceData& data) { return data.Read({"/*", ""}).value(); }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzedDataProvider input(bytes, size);
    const std::filesystem::path folder = wncom::fuzz::Home();
    std::filesystem::remove(folder / "device-data.xml");
    DeviceData data(folder);
    try {
        if (const auto answer = data.Read({PickPath(input), PickPath(input)})) ParseXml(*answer);
    } catch (const std::invalid_argument&) {
    }
    try {
        if (const auto answer = data.Read({PickPath(input), kPrefixes})) ParseXml(*answer);
    } catch (const std::invalid_argument&) {
    }
    const std::string before = Whole(data);
    SetDocument document{kPrefixes, {}};
    while (document.changes.size() < 3 && input.remaining_bytes() > 0) {
        document.changes.push_back({PickPath(input), wncom::fuzz::PickText(input, 6, "a1<&\" ")});
    }
    bool changed = false;
    try {
        changed = data.Write(document).empty();
    } catch (const std::invalid_argument&) {
    }
    if (!changed) Expect(Whole(data) == before, "a failed change changes nothing");
    if (changed && !document.changes.empty()) {
        Expect(Whole(DeviceData(folder)) == Whole(data), "what was set is stored");
    }
    return 0;
}
