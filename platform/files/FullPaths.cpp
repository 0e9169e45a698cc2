#include <unistd.h>

#include <algorithm>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/core/Errors.h"
#include "platform/core/Guarded.h"
#include "platform/files/Paths.h"
#include "wnplatform/inspect.h"

namespace wnplatform {
namespace {

bool IsSeparator(char c) noexcept { return c == '/' || c == '\\'; }

// The components of a path after its root, with "." and ".." worked out, joined by one separator.
std::string Normalized(std::string_view path, char separator) {
    std::vector<std::string_view> kept;
    const bool endsInSeparator = !path.empty() && IsSeparator(path.back());
    while (!path.empty()) {
        const std::size_t end = std::min(path.find_first_of("/\\"), path.size());
        const std::string_view component = path.substr(0, end);
        path.remove_prefix(std::min(end + 1, path.size()));
        if (component == ".." && !kept.empty()) kept.pop_back();
        if (!component.empty() && component != "." && component != "..") kept.push_back(component);
    }
    std::string result;
    for (const std::string_view component : kept) result.append(1, separator).append(component);
    if (result.empty() || endsInSeparator) result += separator;
    return result;
}

std::string CurrentFolder() {
    const std::unique_ptr<char, void (*)(void*)> folder(getcwd(nullptr, 0), std::free);
    return folder ? folder.get() : "";
}

// A path with a drive keeps Windows' form, one of the host the host's.
std::string FullPath(const std::string& path) {
    if (path.size() >= 2 && path[1] == ':') return path.substr(0, 2) + Normalized(path.substr(2), '\\');
    if (path.front() == '\\') return "C:" + Normalized(path, '\\');
    if (path.front() == '/') return Normalized(path, '/');
    return Normalized(ReportedPath(CurrentFolder()) + "/" + path, '/');
}

// The length, or the size that is needed with the terminator.
DWORD Answer(std::string_view text, LPSTR buffer, DWORD size) noexcept {
    const auto length = static_cast<DWORD>(text.size());
    if (!buffer || size <= length) return length + 1;
    std::memcpy(buffer, text.data(), length);
    buffer[length] = '\0';
    return length;
}

}  // namespace
}  // namespace wnplatform

using wnplatform::Guarded;

DWORD GetFullPathNameA(LPCSTR path, DWORD size, LPSTR full, LPSTR* filePart) {
    return Guarded(DWORD{0}, [&]() -> DWORD {
        if (!path || !*path || filePart) {
            SetLastError(filePart ? ERROR_INVALID_PARAMETER : ERROR_INVALID_NAME);
            return 0;
        }
        return wnplatform::Answer(wnplatform::FullPath(path), full, size);
    });
}

UINT GetWindowsDirectoryA(LPSTR path, UINT size) {
    return Guarded(UINT{0}, [path, size] {
        return UINT{wnplatform::Answer(wnplatform::ReportedPath(wnplatform::Home() + "/windows"), path, size)};
    });
}
