// Whole outputs held against files that a person has read.
#pragma once

#include <string>
#include <vector>

namespace wncom::test {

// Fails the test where the text is not that of the file below tests/, such as "agent/golden/creation.log". Run with
// WNCOM_GOLDEN=write in the environment, tests write the file anew instead; read the difference before it is kept.
void ExpectGolden(const std::string& file, const std::string& text);

// A log's lines without what differs from run to run and from host to host: "3 CWendrel::Got Wendrel" has lost its
// time and its ids; the test's home, the folder of the programs, call ids, line numbers and the system's error texts
// are masked. Ends of lines that a message brought along count as lines.
std::vector<std::string> MaskedLines(const std::string& log);
// The same with nothing masked.
std::vector<std::string> UnmaskedLines(const std::string& log);

}  // namespace wncom::test
