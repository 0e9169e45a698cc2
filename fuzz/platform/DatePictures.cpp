// Dates and times by pictures: what is measured is what is written, and nothing beyond.
#include <windows.h>

#include "fuzz/support/Fuzz.h"

using namespace wncom::fuzz;

namespace {

template <class Format>
void Try(const Format& format, const SYSTEMTIME& time, const std::string& picture) {
    const int room = format(LOCALE_USER_DEFAULT, 0, &time, picture.c_str(), nullptr, 0);
    if (room == 0) return;
    std::string text(static_cast<std::size_t>(room) + 1, '#');
    Expect(format(LOCALE_USER_DEFAULT, 0, &time, picture.c_str(), text.data(), room) == room, "as long as measured");
    Expect(text.find('\0') == static_cast<std::size_t>(room) - 1, "ends where it was measured to end");
    Expect(text.back() == '#', "nothing behind the room is written");
    Expect(format(LOCALE_USER_DEFAULT, 0, &time, picture.c_str(), text.data(), room - 1) == 0 || room == 1,
           "too little room is refused");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    SYSTEMTIME time{};
    for (WORD* field : {&time.wYear, &time.wMonth, &time.wDay, &time.wHour, &time.wMinute, &time.wSecond}) {
        *field = input.ConsumeBool() ? input.ConsumeIntegralInRange<WORD>(1, 12) : input.ConsumeIntegral<WORD>();
    }
    time.wYear = static_cast<WORD>(time.wYear + 1990);
    const std::string picture = input.ConsumeRemainingBytesAsString();
    Try(GetDateFormatA, time, picture);
    Try(GetTimeFormatA, time, picture);
    return 0;
}
