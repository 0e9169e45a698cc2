// Reading a whole file.
#pragma once

#include <string>

namespace wnplatform {

// Appends a file's bytes, from the offset that is the text's length to the file's end; the descriptor's position
// stays. False when that fails with errno.
bool ReadToEnd(int descriptor, std::string& text);

}  // namespace wnplatform
