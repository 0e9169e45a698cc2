// Where XML documents come from: the bytes of a file or a text in memory, decoded to UTF-8 before any parser sees
// them.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "common/CodePageText.h"
#include "common/Owned.h"
#include "components/Problem.h"

namespace wncom::components {

// A document larger than this is refused: 64 MB, in bytes.
inline constexpr std::size_t kXmlLimit = 64 * 1024 * 1024;

// For everything that is wrong inside a document.
inline const HRESULT kBadDocument = HRESULT_FROM_WIN32(ERROR_INVALID_DATA);

// What XML counts as white space.
inline constexpr std::string_view kXmlSpace = " \t\r\n";

// All bytes of an open file. Throws Problem without one (with the last error), for a failing read and for a file
// beyond the limit.
std::string ReadFileBytes(const OwnedHandle& file);

// The text of a file: UTF-8 or UTF-16 by its byte order mark, else by its declaration UTF-8 (also when it declares
// nothing), US-ASCII, ISO-8859-1 or windows-1252. Throws Problem for any other encoding and for bytes that are not
// in the encoding, except that of UTF-8 itself: the parser says where it is broken.
std::string DecodeXmlFile(std::string_view bytes);

// The text of a document that lies in memory; what its declaration says of an encoding no longer counts. Throws
// Problem for an unpaired surrogate and a text beyond the limit.
std::string DecodeXmlText(WideView text);

// True for a text that is a document itself, not the name of one: its first character after white space and a byte
// order mark is '<'.
bool LooksLikeXml(WideView text) noexcept;

}  // namespace wncom::components
