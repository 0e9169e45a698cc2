#include "tests/windows/Program.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

std::wstring FromUtf8(const std::string& text) {
    const int size = static_cast<int>(text.size());
    std::wstring wide(static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0)),
                      L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), size, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

// No argument of these tests ends with a backslash or holds a quotation mark.
std::string CommandLineOf(const std::string& program, const std::vector<std::string>& arguments) {
    std::string line = "\"" + program + "\"";
    for (const std::string& argument : arguments) line += " \"" + argument + "\"";
    return line;
}

// A new file of the home, which the other process inherits.
HANDLE NewOutput(const std::string& path) {
    SECURITY_ATTRIBUTES inherited{sizeof(inherited), nullptr, TRUE};
    return CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                       nullptr);
}

std::string ReadLines(const std::string& path) {
    std::string text = ReadWholeFile(path);
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    return text;
}

// A 64-bit system runs 32-bit programs only when it has their half of itself.
bool Runs(int bits) {
    char folder[MAX_PATH];
    return bits == 64 ||
           (GetSystemWow64DirectoryA(folder, MAX_PATH) != 0 && GetFileAttributesA(folder) != INVALID_FILE_ATTRIBUTES);
}

}  // namespace

std::string BinFolder(int bits) {
    if (bits == kOwnBits) return ProgramFolder();
    if (!Runs(bits)) return "";
    char folder[MAX_PATH];
    GetFullPathNameA((ProgramFolder() + "\\..\\..\\" WNCOM_OTHER_BUILD "\\bin").c_str(), sizeof(folder), folder,
                     nullptr);
    const std::string program = std::string(folder) + "\\wn.exe";
    return GetFileAttributesA(program.c_str()) == INVALID_FILE_ATTRIBUTES ? "" : folder;
}

Outcome RunProgram(const std::string& name, const std::vector<std::string>& arguments, const std::string& folder) {
    static int count = 0;
    const std::string file = HomePath() + "\\program-" + std::to_string(++count);
    std::wstring line = FromUtf8(CommandLineOf(folder + "\\" + name, arguments));
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = NewOutput(file + ".out");
    startup.hStdError = NewOutput(file + ".err");
    PROCESS_INFORMATION process{};
    const BOOL started = CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, NORMAL_PRIORITY_CLASS, nullptr,
                                        nullptr, &startup, &process);
    EXPECT_TRUE(started) << name << ": error " << GetLastError();
    CloseHandle(startup.hStdOutput);
    CloseHandle(startup.hStdError);
    DWORD status = STILL_ACTIVE;
    if (started) {
        if (WaitForSingleObject(process.hProcess, 60'000) != WAIT_OBJECT_0) {
            ADD_FAILURE() << name << " did not end";
            TerminateProcess(process.hProcess, 1);
            WaitForSingleObject(process.hProcess, INFINITE);
        }
        GetExitCodeProcess(process.hProcess, &status);
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
    }
    return {status, ReadLines(file + ".out"), ReadLines(file + ".err")};
}

Outcome RunWn(const std::vector<std::string>& arguments, const std::string& folder) {
    return RunProgram("wn.exe", arguments, folder);
}

}  // namespace wncom::test
