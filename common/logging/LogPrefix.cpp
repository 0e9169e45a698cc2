#include "common/logging/LogPrefix.h"

#include <windows.h>

#include <charconv>

#include "common/logging/LogPublished.h"

namespace wncom {
namespace {

// The text of the second that was logged last: most lines share theirs with the line before.
struct SecondText {
    SYSTEMTIME second;
    char text[23];
    std::uint8_t length;
};
constinit Published<SecondText> lastSecond;

void FormatSecond(SecondText& made) noexcept {
    GetDateFormatA(LOCALE_SYSTEM_DEFAULT, 0, &made.second, "M'/'d'/'yy", made.text, sizeof(made.text) - 1);
    const std::size_t length = std::strlen(made.text);
    made.text[length] = '-';
    GetTimeFormatA(LOCALE_SYSTEM_DEFAULT, 0, &made.second, "HH':'mm':'ss", made.text + length + 1,
                   static_cast<int>(sizeof(made.text) - length - 1));
    made.length = static_cast<std::uint8_t>(std::strlen(made.text));
}

char* PutNumber(char* at, DWORD number) noexcept {
    constexpr std::ptrdiff_t kMostDigits = 10;
    return std::to_chars(at, at + kMostDigits, number).ptr;
}

}  // namespace

void AppendLogPrefix(LogLine& line, std::uint8_t level) noexcept {
    SYSTEMTIME now;
    GetLocalTime(&now);
    now.wMilliseconds = 0;
    SecondText second;
    if (!lastSecond.TryRead(second) || std::memcmp(&second.second, &now, sizeof(now)) != 0) {
        second = {now, {}, 0};
        FormatSecond(second);
        lastSecond.TryWrite(second);
    }
    char text[64];
    std::memcpy(text, second.text, sizeof(second.text));
    char* at = text + second.length;
    *at++ = ',';
    *at++ = '[';
    at = PutNumber(at, GetCurrentProcessId());
    *at++ = ':';
    at = PutNumber(at, GetCurrentThreadId());
    *at++ = '/';
    at = PutNumber(at, level);
    *at++ = ']';
    *at++ = ' ';
    line.Append({text, static_cast<std::size_t>(at - text)});
}

}  // namespace wncom
