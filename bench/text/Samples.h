// Texts for the benchmarks of conversions.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string>

namespace wncom::bench {

using WideText = std::basic_string<WCHAR>;

enum class Script {
    Ascii,
    Latin,  // western European words: one letter of eight has an accent
    Cjk,    // ideographs with a comma or a line end now and then
};

const char* NameOf(Script script);

// A text of about so many bytes of UTF-8, the same in each run. Its letters follow no pattern that a processor could
// learn.
WideText Sample(Script script, std::size_t utf8Bytes);

// "1 KB", "64 KB" or "1 MB".
std::string SizeName(std::size_t bytes);

// How many conversions make a slice of some hundred microseconds or more.
std::size_t ConversionsInSlice(std::size_t bytes);

}  // namespace wncom::bench
