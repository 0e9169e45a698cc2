// What an administrator may set for this transport.
#pragma once

#include <windows.h>

namespace wncom::http {

struct Settings {
    DWORD connectTimeout = 5'000;    // milliseconds
    DWORD callTimeout = 60'000;      // milliseconds, the whole call with its answer
    DWORD answerLimit = 256 * 1024;  // KB, the longest answer that is taken
};

// Reads the values "connecttimeout", "calltimeout" and "answerlimit" (REG_DWORD) under HKEY_LOCAL_MACHINE
// "SOFTWARE\Quillbeck\QBNorvel\HttpTransport". A value that is missing, of another type or out of reason (0, more
// than an hour, more than 1 GB) leaves its default, and the two latter are logged.
Settings ReadSettings() noexcept;

}  // namespace wncom::http
