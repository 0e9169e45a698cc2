// The documents that go to a service, from the files that the user names.
#pragma once

#include <string>

#include "wncom/Bstr.h"

namespace wn {

// The whole file without its byte order mark. Throws CommandError with the path when it cannot be read, is empty, is
// larger than 64 MB, or is not UTF-8 text.
wncom::Bstr ReadTicket(const std::string& path);

// The same for a document that must be well-formed XML; if it is not, the error has its line and column.
wncom::Bstr ReadDocument(const std::string& path);

// Writes what a service gave into a file, in place of what it held. Throws CommandError with the path.
void WriteTextFile(const std::string& path, const std::string& text);

}  // namespace wn
