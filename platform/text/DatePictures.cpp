// Dates and times by pictures, in English, which is the layer's one locale.
#include <array>
#include <string_view>

#include "platform/core/Errors.h"
#include "winbase.h"
#include "winnls.h"

namespace wnplatform {
namespace {

constexpr std::array<std::string_view, 12> kMonths = {"January",   "February", "March",    "April",
                                                      "May",       "June",     "July",     "August",
                                                      "September", "October",  "November", "December"};
constexpr std::array<std::string_view, 7> kDays = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                   "Thursday", "Friday", "Saturday"};
constexpr std::size_t kShortName = 3;

// Text for a caller's buffer: counts all of it, stores what fits.
class Output {
public:
    Output(char* buffer, std::size_t size) noexcept : m_buffer(buffer), m_size(size) {}

    void Put(char c) noexcept {
        if (m_length < m_size) m_buffer[m_length] = c;
        ++m_length;
    }
    void Put(std::string_view text) noexcept {
        for (const char c : text) Put(c);
    }
    // A number of up to five digits, with zeros before it where it has fewer than wanted.
    void PutNumber(unsigned number, std::size_t digits) noexcept {
        char text[5];
        std::size_t first = sizeof(text);
        do {
            text[--first] = static_cast<char>('0' + number % 10);
            number /= 10;
        } while (number > 0 || sizeof(text) - first < digits);
        Put(std::string_view(text + first, sizeof(text) - first));
    }
    std::size_t Length() const noexcept { return m_length; }

private:
    char* m_buffer;
    std::size_t m_size;
    std::size_t m_length = 0;
};

bool IsLeap(unsigned year) noexcept { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

unsigned DaysInMonth(unsigned year, unsigned month) noexcept {
    if (month == 2) return IsLeap(year) ? 29 : 28;
    return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

bool IsDate(const SYSTEMTIME& date) noexcept {
    return date.wYear >= 1601 && date.wYear <= 30827 && date.wMonth >= 1 && date.wMonth <= 12 && date.wDay >= 1 &&
           date.wDay <= DaysInMonth(date.wYear, date.wMonth);
}

bool IsTime(const SYSTEMTIME& time) noexcept { return time.wHour < 24 && time.wMinute < 60 && time.wSecond < 60; }

// By Zeller's congruence: what the caller gave as the day of the week does not count.
std::size_t DayOfWeek(const SYSTEMTIME& date) noexcept {
    const unsigned month = date.wMonth < 3 ? date.wMonth + 12U : date.wMonth;
    const unsigned year = date.wMonth < 3 ? date.wYear - 1U : date.wYear;
    const unsigned fromSaturday = (date.wDay + 13 * (month + 1) / 5 + year + year / 4 - year / 100 + year / 400) % 7;
    return (fromSaturday + 6) % 7;
}

void PutName(Output& output, std::string_view name, std::size_t count) noexcept {
    output.Put(count == kShortName ? name.substr(0, kShortName) : name);
}

bool PutDateField(Output& output, const SYSTEMTIME& date, char letter, std::size_t count) noexcept {
    switch (letter) {
        case 'd':
            if (count >= kShortName) {
                PutName(output, kDays[DayOfWeek(date)], count);
            } else {
                output.PutNumber(date.wDay, count);
            }
            return true;
        case 'M':
            if (count >= kShortName) {
                PutName(output, kMonths[date.wMonth - 1U], count);
            } else {
                output.PutNumber(date.wMonth, count);
            }
            return true;
        case 'y':
            output.PutNumber(count <= 2 ? date.wYear % 100U : date.wYear, count <= 2 ? count : 4);
            return true;
        default:
            return false;
    }
}

bool PutTimeField(Output& output, const SYSTEMTIME& time, char letter, std::size_t count) noexcept {
    const std::size_t digits = count > 1 ? 2 : 1;
    switch (letter) {
        case 'h':
            output.PutNumber(time.wHour % 12 == 0 ? 12U : time.wHour % 12U, digits);
            return true;
        case 'H':
            output.PutNumber(time.wHour, digits);
            return true;
        case 'm':
            output.PutNumber(time.wMinute, digits);
            return true;
        case 's':
            output.PutNumber(time.wSecond, digits);
            return true;
        case 't':
            output.Put(std::string_view(time.wHour < 12 ? "AM" : "PM").substr(0, digits));
            return true;
        default:
            return false;
    }
}

// Puts what the quotes enclose, where two stand for one, and takes it off the picture.
void PutQuoted(Output& output, std::string_view& picture) noexcept {
    picture.remove_prefix(1);
    while (!picture.empty()) {
        if (picture.starts_with("''")) {
            picture.remove_prefix(1);
        } else if (picture.front() == '\'') {
            picture.remove_prefix(1);
            return;
        }
        output.Put(picture.front());
        picture.remove_prefix(1);
    }
}

using PutField = bool (*)(Output&, const SYSTEMTIME&, char, std::size_t) noexcept;

void PutPicture(Output& output, const SYSTEMTIME& time, std::string_view picture, PutField putField) noexcept {
    while (!picture.empty()) {
        const char letter = picture.front();
        if (letter == '\'') {
            PutQuoted(output, picture);
            continue;
        }
        std::size_t count = 1;
        while (count < picture.size() && picture[count] == letter) ++count;
        if (!putField(output, time, letter, count)) output.Put(picture.substr(0, count));
        picture.remove_prefix(count);
    }
}

struct Kind {
    std::string_view usualPicture;
    bool (*isValid)(const SYSTEMTIME&) noexcept;
    PutField putField;
};
constexpr Kind kDate{"M/d/yyyy", IsDate, PutDateField};
constexpr Kind kTime{"h:mm:ss tt", IsTime, PutTimeField};

int Format(const Kind& kind, DWORD flags, const SYSTEMTIME* given, const char* picture, char* text,
           int size) noexcept {
    if (flags != 0) return Fail(ERROR_INVALID_FLAGS);
    SYSTEMTIME time;
    if (given) {
        time = *given;
    } else {
        GetLocalTime(&time);
    }
    if (size < 0 || (size > 0 && !text) || !kind.isValid(time)) return Fail(ERROR_INVALID_PARAMETER);
    Output output(text, static_cast<std::size_t>(size));
    PutPicture(output, time, picture ? picture : kind.usualPicture, kind.putField);
    output.Put('\0');
    if (size > 0 && output.Length() > static_cast<std::size_t>(size)) return Fail(ERROR_INSUFFICIENT_BUFFER);
    return static_cast<int>(output.Length());
}

}  // namespace
}  // namespace wnplatform

int GetDateFormatA(LCID, DWORD flags, const SYSTEMTIME* date, LPCSTR format, LPSTR text, int size) {
    return wnplatform::Format(wnplatform::kDate, flags, date, format, text, size);
}

int GetTimeFormatA(LCID, DWORD flags, const SYSTEMTIME* time, LPCSTR format, LPSTR text, int size) {
    return wnplatform::Format(wnplatform::kTime, flags, time, format, text, size);
}
