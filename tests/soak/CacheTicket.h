// Tickets for a cache that show by themselves whether they are whole.
#pragma once

#include <cstdio>
#include <string>

namespace wncom::test {

// Of many lengths, and different for each writer and round.
inline std::string CacheTicket(int writer, int round) {
    std::string text = "<ticket writer=\"" + std::to_string(writer) + "\" round=\"" + std::to_string(round) + "\">";
    const int length = (writer * 7919 + round * 104729) % 20000;
    for (int i = 0; i < length; ++i) text += static_cast<char>('a' + (i * (writer + 1) + round) % 26);
    return text + "</ticket>";
}

inline bool IsWholeTicket(const std::string& text) {
    int writer = 0;
    int round = 0;
    return std::sscanf(text.c_str(), "<ticket writer=\"%d\" round=\"%d\">", &writer, &round) == 2 &&
           text == CacheTicket(writer, round);
}

}  // namespace wncom::test
