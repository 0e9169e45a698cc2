// The process's connection to the tickets that all processes share.
#pragma once

#include <windows.h>

#include <string>

#include "common/CodePageText.h"
#include "wncom/Bstr.h"

namespace wncom::components {

// Any thread may call these. The path is in the narrow code page. The connection is made at the first call and stays
// open; a call for another path, or after the file was removed or replaced, makes a new one.
//
// They answer within about two seconds: while others keep the database busy they try again for that long, then answer
// HRESULT_FROM_WIN32(ERROR_LOCK_VIOLATION). A damaged database is set aside under its name with ".damaged" after it,
// in place of an earlier one, and replaced by an empty one. Each failure, and each replacement, is told in a line on
// the debugger output.

HRESULT PutTicket(const std::string& path, WideView key, WideView ticket, LONG seconds) noexcept;
// S_FALSE and null when there is none that still lives.
HRESULT FetchTicket(const std::string& path, WideView key, Bstr& ticket) noexcept;
// S_FALSE when there is none.
HRESULT RemoveTicket(const std::string& path, WideView key) noexcept;

}  // namespace wncom::components
