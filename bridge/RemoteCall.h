// What the bridge's operations do around their one remote call.
#pragma once

#include <windows.h>

#include <cstdint>
#include <utility>

#include "common/MallocText.h"
#include "wncom/CString.h"
#include "wncom/Logging.h"

namespace wncom {

// Runs the call with its conversions; whatever it throws is not looked at, only logged with the failure text.
template <class Call>
void GuardedCall(std::uint8_t level, const char* failure, Call&& call) noexcept {
    try {
        std::forward<Call>(call)();
    } catch (...) {
        Log(level, failure);
    }
}

inline bool IsNullOrEmpty(const WCHAR* text) noexcept { return !text || !*text; }

// The text in UTF-8; empty for null. Throws std::bad_alloc when memory runs out.
CString OutgoingText(const WCHAR* text);

// Stores a remote answer as a new text in the slot and returns the answer's length in bytes. An empty one, or one
// that memory is too short for, is logged with the text given for it; the slot is not written then and the result
// is 0. Logged also writes the answer itself into the log, unless it is too big.
LONG HandOut(const CString& answer, MallocText<WCHAR>* slot, const char* nothing = "result: NULL!\n\n") noexcept;
LONG HandOutLogged(const CString& answer, MallocText<WCHAR>* slot) noexcept;

// The most that the bridge writes into the log of one exchange, in bytes.
inline constexpr DWORD kTraceSize = 63488;

}  // namespace wncom
