// Programs of the tree in processes of their own, with what they write read back.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace wncom::test {

inline constexpr int kOwnBits = static_cast<int>(8 * sizeof(void*));

// The folder of the programs and modules of this bitness, or of the other one, which another build makes; without a
// trailing separator. Empty when that build is not there, or when the system runs no programs of that bitness.
std::string BinFolder(int bits);

struct Outcome {
    DWORD status;        // exit status
    std::string output;  // lines end with a line feed alone
    std::string error;
};

// Runs it to its end. The arguments are UTF-8; without a folder it is the program of this bitness.
Outcome RunProgram(const std::string& name, const std::vector<std::string>& arguments,
                   const std::string& folder = BinFolder(kOwnBits));

// The same for "wn".
Outcome RunWn(const std::vector<std::string>& arguments, const std::string& folder = BinFolder(kOwnBits));

}  // namespace wncom::test
