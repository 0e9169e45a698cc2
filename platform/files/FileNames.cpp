// Files and folders by their names: attributes, making, deleting, renaming.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <string>

#include "platform/core/Errors.h"
#include "platform/core/Guarded.h"
#include "platform/files/FileObject.h"
#include "platform/sync/Security.h"
#include "wnplatform/inspect.h"

namespace wnplatform {
namespace {

BOOL FailPath(const std::string& path) noexcept { return Fail(PathError(errno, path)); }

bool IsFolder(const std::string& path) noexcept {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

BOOL Move(const std::string& from, const std::string& to, bool replace) {
    struct stat status;
    if (lstat(from.c_str(), &status) != 0) return FailPath(from);
    if (from == to) return TRUE;
    if (replace) {
        if (IsFolder(to)) return Fail(ERROR_ACCESS_DENIED);
        return rename(from.c_str(), to.c_str()) == 0 ? TRUE : FailPath(to);
    }
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return TRUE;
    if (errno != EINVAL || IsFolder(from)) return FailPath(to);
    // A file system that cannot rename so: a second name is refused just the same where the target exists.
    if (link(from.c_str(), to.c_str()) != 0) return FailPath(to);
    return unlink(from.c_str()) == 0 ? TRUE : FailPath(from);
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

BOOL CreateDirectoryA(LPCSTR path, LPSECURITY_ATTRIBUTES security) {
    return Guarded(FALSE, [path, security] {
        const std::string host = HostPath(path);
        if (mkdir(host.c_str(), 0777) != 0) {
            return Fail(errno == ENOENT ? ERROR_PATH_NOT_FOUND : wnplatform::PathError(errno, host));
        }
        if (wnplatform::EveryoneMayOpen(security)) chmod(host.c_str(), 0777);
        return TRUE;
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
        if (flags & ~DWORD{MOVEFILE_REPLACE_EXISTING}) return Fail(ERROR_INVALID_PARAMETER);
        const std::string hostFrom = HostPath(from);
        const std::string hostTo = HostPath(to);
        if (hostFrom.empty() || hostTo.empty()) return Fail(ERROR_PATH_NOT_FOUND);
        return wnplatform::Move(hostFrom, hostTo, (flags & MOVEFILE_REPLACE_EXISTING) != 0);
    });
}
