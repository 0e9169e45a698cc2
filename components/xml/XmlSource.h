// Where XML documents come from: the bytes of a file or a text in memory, decoded to UTF-8 before any parser sees
// them.
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <string_view>

#include "components/Problem.h"
#include "components/Utf8.h"

namespace wncom::components {

// A document larger than this is refused: 64 MB, in bytes.
inline constexpr std::size_t kXmlLimit = 64 * 1024 * 1024;

// For everything that is wrong inside a document.
inline const HRESULT kBadDocument = HRESULT_FROM_WIN32(ERROR_INVALID_DATA);

struct CloseFile {
    void operator()(HANDLE file) const noexcept {
        if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
    }
};
using FileHandle = std::unique_ptr<void, CloseFile>;

// All bytes of an open file. Throws Problem for an invalid handle (with the last error), a failing read and a file
// beyond the limit.
std::string ReadFileBytes(const FileHandle& file);

// The text of a file: UTF-8 or UTF-16 by its byte order mark, else by its declaration UTF-8 (also when it declares
// nothing), US-ASCII, ISO-8859-1 or windows-1252. Throws Problem for any other encoding and for bytes that are
// none of the encoding's.
std::string DecodeXmlFile(std::string_view bytes);

// The text of a document that lies in memory; what its declaration says of an encoding no longer counts. Throws
// Problem for an unpaired surrogate and a text beyond the limit.
std::string DecodeXmlText(WideView text);

// True for a text that is a document itself, not the name of one: its first character after white space and a byte
// order mark is '<'.
bool LooksLikeXml(WideView text) noexcept;

}  // namespace wncom::components
