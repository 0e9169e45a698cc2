// A home of its own for each test process, and its cleaning between tests.
#pragma once

#include <string>

namespace wncom::test {

// The home's folder on the host, without a trailing separator. Set before main's first test and removed at the end
// (kept when WNCOM_KEEP_HOME is set, for a look after a failure).
const std::string& HomePath();

// The folder that this test program was built into, where the modules lie, without a trailing separator.
const std::string& ProgramFolder();

// Writes or reads a whole file of the host; reading a file that is absent gives an empty text.
void WriteWholeFile(const std::string& path, const std::string& text);
std::string ReadWholeFile(const std::string& path);

}  // namespace wncom::test
