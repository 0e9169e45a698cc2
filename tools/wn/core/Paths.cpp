#include "tools/wn/core/Paths.h"

#include <windows.h>

#include "tools/wn/core/CommandError.h"
#include "tools/wn/core/Texts.h"

namespace wn {
namespace {

// INVALID_FILE_ATTRIBUTES also for a path that cannot be said in the narrow code page.
DWORD AttributesOf(const std::string& path) {
    const std::optional<std::string> narrow = ToNarrow(path);
    return narrow ? GetFileAttributesA(narrow->c_str()) : INVALID_FILE_ATTRIBUTES;
}

[[noreturn]] void RefuseCharacters(const std::string& path) {
    throw WrongInput("The path " + path + " has a character that the system's code page (" +
                     std::to_string(GetACP()) + ") lacks: use another path");
}

}  // namespace

std::string NarrowPath(const std::string& path) {
    std::optional<std::string> narrow = ToNarrow(path);
    if (!narrow) RefuseCharacters(path);
    return *std::move(narrow);
}

std::string WholePath(const std::string& path) {
    char whole[4096];
    const DWORD length = GetFullPathNameA(NarrowPath(path).c_str(), sizeof(whole), whole, nullptr);
    if (length == 0 || length >= sizeof(whole)) throw WrongInput("Not a path: " + path);
    std::string result = FromNarrow({whole, length});
    // The current directory comes with a question mark, which no path may hold, for each character that is lacking.
    if (result.find('?') != std::string::npos) RefuseCharacters(result);
    return result;
}

std::string WholeDirectory(const std::string& path) {
    std::string whole = WholePath(path);
    if (!Exists(whole)) throw WrongInput("No such directory: " + whole);
    if (!IsDirectory(whole)) throw WrongInput("Not a directory: " + whole);
    return whole;
}

std::string WholeFile(const std::string& path) {
    std::string whole = WholePath(path);
    if (IsDirectory(whole)) throw WrongInput(whole + " is a directory: give the path of a file");
    const std::string folder = whole.substr(0, whole.find_last_of("/\\") + 1);
    if (!IsDirectory(folder)) throw WrongInput("No such directory: " + folder);
    return whole;
}

std::string InWindowsDirectory(const std::string& name) {
    char folder[MAX_PATH];
    const UINT length = GetWindowsDirectoryA(folder, sizeof(folder));
    if (length == 0 || length >= sizeof(folder)) throw CommandError("The Windows directory is unknown");
    return FromNarrow({folder, length}) + "\\" + name;
}

bool Exists(const std::string& path) { return AttributesOf(path) != INVALID_FILE_ATTRIBUTES; }

bool IsDirectory(const std::string& path) {
    const DWORD attributes = AttributesOf(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

}  // namespace wn
