#include "tools/wndevice/RandomId.h"

#include <algorithm>
#include <random>

namespace wndevice {
namespace {

constexpr std::string_view kDigits = "0123456789abcdef";
constexpr std::size_t kLength = 32;

}  // namespace

std::string NewId() {
    std::random_device source;
    std::string id;
    while (id.size() < kLength) {
        unsigned bits = source();
        for (int i = 0; i < 8; ++i, bits >>= 4) id += kDigits[bits & 0x0F];
    }
    return id;
}

bool IsId(std::string_view text) {
    return text.size() == kLength &&
           std::all_of(text.begin(), text.end(), [](char c) { return kDigits.find(c) != std::string_view::npos; });
}

}  // namespace wndevice
