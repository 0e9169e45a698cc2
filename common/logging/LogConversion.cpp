#include "common/logging/LogConversion.h"

#include <algorithm>
#include <charconv>

namespace wncom {
namespace {

// A number in the format beyond this one writes no more than it does.
constexpr std::size_t kLargest = LogLine::kBufferBytes;

constexpr std::uint32_t kReplacement = 0xFFFD;

std::size_t ParseNumber(std::string_view text, std::size_t& at) noexcept {
    std::size_t value = 0;
    for (; at != text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
        value = std::min(kLargest, value * 10 + static_cast<std::size_t>(text[at] - '0'));
    }
    return value;
}

std::size_t ModifierLength(std::string_view text) noexcept {
    switch (text.empty() ? '\0' : text[0]) {
        case 'h':
        case 'l':
            return text.size() > 1 && text[1] == text[0] ? 2 : 1;
        case 'z':
            return 1;
        case 'I':
            return text.substr(0, 3) == "I64" ? 3 : 0;
        default:
            return 0;
    }
}

bool IsType(char c) noexcept {
    switch (c) {
        case 'd':
        case 'i':
        case 'u':
        case 'x':
        case 'X':
        case 'o':
        case 'c':
        case 'p':
        case 's':
        case 'S':
        case 'C':
            return true;
        default:
            return false;
    }
}

// The next character of a text of UTF-16, behind which the text then begins; an unpaired surrogate is replaced.
std::uint32_t NextCharacter(const WCHAR*& text) noexcept {
    const std::uint32_t unit = static_cast<std::uint16_t>(*text++);
    if (unit < 0xD800 || unit > 0xDFFF) return unit;
    const std::uint32_t low = unit < 0xDC00 ? static_cast<std::uint16_t>(*text) : 0U;
    if (low < 0xDC00 || low > 0xDFFF) return kReplacement;
    ++text;
    return 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
}

// The UTF-8 form of a character in a place of four bytes.
std::string_view ToUtf8(std::uint32_t character, char (&place)[4]) noexcept {
    if (character < 0x80) {
        place[0] = static_cast<char>(character);
        return {place, 1};
    }
    const std::size_t length = character < 0x800 ? 2 : character < 0x10000 ? 3 : 4;
    for (std::size_t i = length - 1; i != 0; --i, character >>= 6) {
        place[i] = static_cast<char>(0x80 | (character & 0x3F));
    }
    place[0] = static_cast<char>((0xF00U >> length) | character);
    return {place, length};
}

void AppendWide(LogLine& line, const WCHAR* text, std::size_t bytesLeft) noexcept {
    while (*text && !line.full()) {
        char place[4];
        const std::string_view bytes = ToUtf8(NextCharacter(text), place);
        if (bytes.size() > bytesLeft) return;
        line.AppendWhole(bytes);
        bytesLeft -= bytes.size();
    }
}

// Looks at no more than the bytes that may be written: a text as long as the precision needs no terminator.
std::string_view Bounded(const char* text, std::size_t bytes) noexcept {
    const std::size_t most = std::min(bytes, kLargest);
    const void* end = std::memchr(text, '\0', most);
    return {text, end ? static_cast<std::size_t>(static_cast<const char*>(end) - text) : most};
}

void AppendCharacter(LogLine& line, const LogArgument& argument, bool wide) noexcept {
    const WCHAR text[] = {static_cast<WCHAR>(argument.number), 0};
    const char byte = static_cast<char>(argument.number);
    if (wide || argument.kind == LogArgument::Kind::WideCharacter) {
        AppendWide(line, text, LogConversion::kNoPrecision);
    } else if (byte != '\0') {
        line.Append({&byte, 1});
    }
}

}  // namespace

bool LogConversion::TakeFlag(char flag) noexcept {
    switch (flag) {
        case '-':
            return left = true;
        case '0':
            return zeros = true;
        case '+':
            return plus = true;
        case ' ':
            return space = true;
        case '#':
            return alternate = true;
        default:
            return false;
    }
}

std::size_t LogConversion::Parse(std::string_view text) noexcept {
    *this = LogConversion();
    if (text.substr(0, 2) == "%%") {
        type = '%';
        return 2;
    }
    std::size_t at = 1;
    while (at < text.size() && TakeFlag(text[at])) ++at;
    width = ParseNumber(text, at);
    if (at < text.size() && text[at] == '.') precision = ParseNumber(text, ++at);
    at += ModifierLength(text.substr(at));
    if (at >= text.size() || !IsType(text[at])) return 0;
    type = text[at];
    return at + 1;
}

void LogConversion::Append(LogLine& line, const LogArgument& argument) const noexcept {
    using Kind = LogArgument::Kind;
    const std::size_t start = line.length();
    if (argument.kind == Kind::NarrowString || (argument.kind == Kind::WideString && !argument.wide)) {
        const char* text = argument.kind == Kind::NarrowString ? argument.narrow : nullptr;
        line.Append(Bounded(text ? text : "(null)", precision));
    } else if (argument.kind == Kind::WideString) {
        AppendWide(line, argument.wide, precision);
    } else if (type == 'c' || type == 'C') {
        AppendCharacter(line, argument, type == 'C');
    } else {
        AppendNumber(line, argument);
    }
    line.Pad(start, width, left);
}

void LogConversion::AppendNumber(LogLine& line, const LogArgument& argument) const noexcept {
    const bool pointer = argument.kind == LogArgument::Kind::Pointer;
    const bool address = type == 'p' || (pointer && ForText());
    const bool decimal = !address && (type == 'd' || type == 'i' || ForText());
    // Addresses under the other conversions keep the 32 bits that a line of a 32-bit host shows.
    const std::size_t bytes = pointer && !address ? sizeof(DWORD) : argument.bytes;
    std::uint64_t value = argument.number;
    const bool negative =
        decimal && argument.kind == LogArgument::Kind::Signed && static_cast<std::int64_t>(value) < 0;
    if (negative) {
        value = 0 - value;
    } else if (bytes < sizeof(value)) {
        value &= (std::uint64_t{1} << (8 * bytes)) - 1;
    }

    char digits[22];  // of 64 bits in octal
    const int base = type == 'o' ? 8 : (address || type == 'x' || type == 'X') ? 16 : 10;
    const char* end = base == 10 ? std::to_chars(digits, std::end(digits), value).ptr
                                 : std::to_chars(digits, std::end(digits), value, base).ptr;
    const bool precise = precision != kNoPrecision && !ForText();
    // With a precision of 0 the number 0 has no digits.
    const std::size_t count =
        value == 0 && precise && precision == 0 && !address ? 0 : static_cast<std::size_t>(end - digits);
    if (address || type == 'X') {
        std::transform(digits, digits + count, digits,
                       [](char c) { return c < 'a' ? c : static_cast<char>(c - 'a' + 'A'); });
    }

    std::string_view sign = "";
    if (decimal) sign = negative ? "-" : plus ? "+" : space ? " " : "";
    if (alternate && value != 0 && base == 16) sign = type == 'X' ? "0X" : "0x";

    std::size_t least = address ? 2 * sizeof(void*) : precise ? precision : 1;
    // An octal number begins with a 0, which counts as one of its digits.
    if (alternate && base == 8) least = std::max(least, value == 0 ? 1 : count + 1);
    if (zeros && !left && !precise && width > sign.size()) least = std::max(least, width - sign.size());
    line.Append(sign);
    if (least > count) line.Append(least - count, '0');
    line.Append({digits, count});
}

}  // namespace wncom
