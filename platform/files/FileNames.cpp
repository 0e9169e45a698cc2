// Files and folders by their names: attributes, deleting, renaming.
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <string>

#include "platform/core/Errors.h"
#include "platform/core/Guarded.h"
#include "platform/files/FileObject.h"
#include "wnplatform/inspect.h"

namespace wnplatform {
namespace {

BOOL FailPath(const std::string& path) noexcept { return Fail(PathError(errno, path)); }

bool IsFolder(const std::string& path) noexcept {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

BOOL Replace(const std::string& from, const std::string& to) {
    struct stat status;
    if (lstat(from.c_str(), &status) != 0) return FailPath(from);
    if (IsFolder(to)) return Fail(ERROR_ACCESS_DENIED);
    return rename(from.c_str(), to.c_str()) == 0 ? TRUE : FailPath(to);
}

}  // namespace
}  // namespace wnplatform

using wnplatform::Fail;
using wnplatform::Guarded;
using wnplatform::HostPath;

DWORD GetFileAttributesA(LPCSTR path) {
    return Guarded(INVALID_FILE_ATTRIBUTES, [path]() -> DWORD {
        const std::string host = HostPath(path);
        struct stat status;
        if (!host.empty() && stat(host.c_str(), &status) == 0) {
            return S_ISDIR(status.st_mode) ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_NORMAL;
        }
        SetLastError(host.empty() ? ERROR_PATH_NOT_FOUND : wnplatform::PathError(errno, host));
        return INVALID_FILE_ATTRIBUTES;
    });
}

BOOL DeleteFileA(LPCSTR path) {
    return Guarded(FALSE, [path] {
        const std::string host = HostPath(path);
        if (host.empty()) return Fail(ERROR_PATH_NOT_FOUND);
        return unlink(host.c_str()) == 0 ? TRUE : wnplatform::FailPath(host);
    });
}

BOOL MoveFileExA(LPCSTR from, LPCSTR to, DWORD flags) {
    return Guarded(FALSE, [from, to, flags] {
        if (flags != MOVEFILE_REPLACE_EXISTING) return Fail(ERROR_INVALID_PARAMETER);
        const std::string hostFrom = HostPath(from);
        const std::string hostTo = HostPath(to);
        if (hostFrom.empty() || hostTo.empty()) return Fail(ERROR_PATH_NOT_FOUND);
        return wnplatform::Replace(hostFrom, hostTo);
    });
}
