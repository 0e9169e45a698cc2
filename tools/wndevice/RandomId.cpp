#include "tools/wndevice/RandomId.h"

#include <sys/random.h>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace wndevice {
namespace {

constexpr std::string_view kDigits = "0123456789abcdef";
constexpr std::size_t kBytes = 16;

}  // namespace

std::string NewId() {
    std::array<unsigned char, kBytes> bytes;
    if (getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
        throw std::runtime_error("the system gives no random bytes");
    }
    std::string id;
    for (const unsigned char byte : bytes) {
        id += kDigits[byte >> 4];
        id += kDigits[byte & 0x0F];
    }
    return id;
}

bool IsId(std::string_view text) {
    return text.size() == 2 * kBytes &&
           std::all_of(text.begin(), text.end(), [](char c) { return kDigits.find(c) != std::string_view::npos; });
}

}  // namespace wndevice
