#include "libraries/http/shared/OneLine.h"

#include <algorithm>

namespace wncom::http {
namespace {

constexpr std::size_t kMessageBytes = 200;

}  // namespace

std::string OneLine(std::string_view text) {
    std::string line(text.substr(0, kMessageBytes));
    std::replace_if(
        line.begin(), line.end(), [](char c) { return (c & 0xE0) == 0 || c == 0x7F; }, ' ');
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

}  // namespace wncom::http
