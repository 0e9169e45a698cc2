#include "platform/core/Time.h"

#include <ctime>

#include "winbase.h"

namespace {

// The host's rules for local time are looked up once a second and thread at most; within it only the milliseconds
// differ.
struct LocalSecond {
    std::time_t second = -1;
    SYSTEMTIME time{};
};
thread_local LocalSecond t_last;

SYSTEMTIME LocalTimeAt(std::time_t second) {
    std::tm local{};
    localtime_r(&second, &local);
    SYSTEMTIME time{};
    time.wYear = static_cast<WORD>(local.tm_year + 1900);
    time.wMonth = static_cast<WORD>(local.tm_mon + 1);
    time.wDayOfWeek = static_cast<WORD>(local.tm_wday);
    time.wDay = static_cast<WORD>(local.tm_mday);
    time.wHour = static_cast<WORD>(local.tm_hour);
    time.wMinute = static_cast<WORD>(local.tm_min);
    time.wSecond = static_cast<WORD>(local.tm_sec < 60 ? local.tm_sec : 59);  // Windows knows no leap seconds
    return time;
}

}  // namespace

namespace wnplatform {

LONGLONG MonotonicMilliseconds() noexcept {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return LONGLONG{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000;
}

}  // namespace wnplatform

void GetLocalTime(SYSTEMTIME* time) {
    timespec now;
    // Moves with the host's tick of a few milliseconds, as Windows' does; the finer clocks cost many times as much.
    clock_gettime(CLOCK_REALTIME_COARSE, &now);
    if (t_last.second != now.tv_sec) t_last = {now.tv_sec, LocalTimeAt(now.tv_sec)};
    *time = t_last.time;
    time->wMilliseconds = static_cast<WORD>(now.tv_nsec / 1'000'000);
}
