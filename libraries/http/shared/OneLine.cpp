#include "libraries/http/shared/OneLine.h"

#include <algorithm>

namespace wncom::http {
std::string OneLine(std::string_view text, std::size_t mostBytes) {
    // No character is cut in two.
    while (mostBytes < text.size() && mostBytes > 0 && (text[mostBytes] & 0xC0) == 0x80) --mostBytes;
    std::string line(text.substr(0, mostBytes));
    std::replace_if(
        line.begin(), line.end(), [](char c) { return (c & 0xE0) == 0 || c == 0x7F; }, ' ');
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

}  // namespace wncom::http
