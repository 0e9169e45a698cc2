// Documents that go to a service, from what the user names, and what comes back into files.
#pragma once

#include <string>

#include "wncom/Bstr.h"

namespace wn {

// A whole XML document without its byte order mark; "-" is standard input. Throws WrongInput with the path when it
// cannot be read, is empty, is larger than 64 MB, is not UTF-8 text, or is not well-formed, then with line and
// column.
wncom::Bstr ReadDocument(const std::string& path);

// Writes a whole file, in place of what it held. Throws CommandError with the path.
void WriteTextFile(const std::string& path, const std::string& text);

}  // namespace wn
