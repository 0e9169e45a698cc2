// Conversions between the agent's UTF-16 texts and the narrow texts of the remote interface.
//
// Texts go out in UTF-8 and come back in the system's narrow code page. All of them may be called from any thread.
#pragma once

#include <windows.h>

#include <cstddef>

#include "common/MallocText.h"
#include "wncom/CString.h"

namespace wncom {

// Encodes count units into at most capacity bytes, without a terminator. Each unit is encoded by itself: the halves
// of a surrogate pair become two three-byte sequences. A sequence that does not fit whole is not written; what the
// room holds after the written bytes is undefined. Returns 4 when units remain unread, else the number of bytes that
// the last sequence lacked, else 0.
int u16_utf8(const WCHAR* units, std::ptrdiff_t count, char* bytes, std::ptrdiff_t capacity,
             std::ptrdiff_t* written) noexcept;

// The text in UTF-8. Null for null and when memory runs out.
MallocText<char> WCharToUtf8(const WCHAR* text) noexcept;

// Decodes count bytes into at most capacity units, without a terminator. Over-long forms and encoded surrogates are
// accepted, sequences of four bytes are not. Returns 0 when all was read, 1 when the destination is full, 2 or 3
// when the bytes end inside a sequence of that length, and after an illegal sequence, which is logged, -1, -2 or -3
// for the byte of it that was wrong; consumed counts what was decoded before.
int utf8_u16(const char* bytes, std::ptrdiff_t count, std::ptrdiff_t* consumed, WCHAR* units,
             std::ptrdiff_t capacity) noexcept;

// The text up to its first illegal or cut-off sequence. Null for null and when memory runs out.
MallocText<WCHAR> Utf8ToWChar(const char* text) noexcept;

// A value of the same bytes, empty for null. Throws std::bad_alloc when memory runs out.
CString CharToCString(const char* text);

// The value's bytes read in the system's narrow code page; an empty text for an empty value. Null only when memory
// runs out.
MallocText<WCHAR> CStringToWChar(const CString& value) noexcept;

}  // namespace wncom
