// What every fuzzer needs. A fuzzer is a program that is called with one input after another; it reads inputs as they
// come, or takes them apart with FuzzedDataProvider.
#pragma once

#include <windows.h>

#include <fuzzer/FuzzedDataProvider.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace wncom::fuzz {

using Wide = std::basic_string<WCHAR>;

// Ends the process when something does not hold, so that the input is kept.
void Expect(bool holds, const char* what);

// The home of this process, which is removed at its end. Made before the first input, and nothing of the layer runs
// before.
const std::string& Home();

inline std::string_view View(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

// A text of so many characters at most, all of them from a list.
std::string PickText(FuzzedDataProvider& input, std::size_t most, std::string_view characters);
// UTF-16 of so many units at most, often ASCII, with characters of all lengths and, when broken, half ones. No zeros.
Wide PickWide(FuzzedDataProvider& input, std::size_t most, bool broken);

}  // namespace wncom::fuzz
