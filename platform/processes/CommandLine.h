// Command lines, as the C runtime of Windows takes them apart.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace wnplatform {

// The arguments of a command line, the program's name first. In the name, quotes only hold blanks together; after it,
// a backslash before a quote makes the quote a character, and so does a doubled quote inside quotes.
std::vector<std::string> SplitCommandLine(std::string_view line);

}  // namespace wnplatform
