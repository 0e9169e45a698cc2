// Dates and times by pictures of numbers.
#include <algorithm>
#include <span>
#include <string>
#include <string_view>

#include "platform/core/Errors.h"
#include "platform/core/Guarded.h"
#include "winbase.h"
#include "winnls.h"

namespace wnplatform {
namespace {

struct Field {
    char letter;
    WORD SYSTEMTIME::*number;
    WORD least;
    WORD most;
};
constexpr Field kDate[] = {
    {'d', &SYSTEMTIME::wDay, 1, 31}, {'M', &SYSTEMTIME::wMonth, 1, 12}, {'y', &SYSTEMTIME::wYear, 1601, 30827}};
constexpr Field kTime[] = {
    {'H', &SYSTEMTIME::wHour, 0, 23}, {'m', &SYSTEMTIME::wMinute, 0, 59}, {'s', &SYSTEMTIME::wSecond, 0, 59}};

// Takes as many letters off the picture as the first one repeats.
std::size_t TakeRun(std::string_view& picture) noexcept {
    const std::size_t count = std::min(picture.find_first_not_of(picture.front()), picture.size());
    picture.remove_prefix(count);
    return count;
}

// Adds what stands for the start of the picture and takes it off; false for what is not offered.
bool PutNext(std::span<const Field> fields, const SYSTEMTIME& time, std::string_view& picture, std::string& text) {
    const char first = picture.front();
    if (first == '\'') {
        const std::string_view quoted = picture.substr(1, picture.find('\'', 1) - 1);
        picture.remove_prefix(std::min(quoted.size() + 2, picture.size()));
        text += quoted;
        return true;
    }
    const std::size_t count = TakeRun(picture);
    for (const Field& field : fields) {
        const WORD number = time.*field.number;
        if (field.letter != first) continue;
        if (count > 2 || number < field.least || number > field.most) return false;
        if (count == 2 || number % 100 >= 10) text += static_cast<char>('0' + number % 100 / 10);
        text += static_cast<char>('0' + number % 10);
        return true;
    }
    text.append(count, first);
    return (first | 0x20) < 'a' || (first | 0x20) > 'z';
}

int Format(std::span<const Field> fields, DWORD flags, const SYSTEMTIME* time, const char* picture, char* text,
           int size) noexcept {
    return Guarded(0, [&] {
        if (flags != 0) return Fail(ERROR_INVALID_FLAGS);
        if (!time || !picture || size < 0 || (size > 0 && !text)) return Fail(ERROR_INVALID_PARAMETER);
        std::string whole;
        for (std::string_view rest = picture; !rest.empty();) {
            if (!PutNext(fields, *time, rest, whole)) return Fail(ERROR_INVALID_PARAMETER);
        }
        const std::size_t needed = whole.size() + 1;
        if (size > 0 && needed > static_cast<std::size_t>(size)) return Fail(ERROR_INSUFFICIENT_BUFFER);
        if (size > 0) std::copy_n(whole.c_str(), needed, text);
        return static_cast<int>(needed);
    });
}

}  // namespace
}  // namespace wnplatform

int GetDateFormatA(LCID, DWORD flags, const SYSTEMTIME* date, LPCSTR format, LPSTR text, int size) {
    return wnplatform::Format(wnplatform::kDate, flags, date, format, text, size);
}

int GetTimeFormatA(LCID, DWORD flags, const SYSTEMTIME* time, LPCSTR format, LPSTR text, int size) {
    return wnplatform::Format(wnplatform::kTime, flags, time, format, text, size);
}
