#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <string>

#include "platform/core/Errors.h"
#include "platform/core/Guarded.h"
#include "platform/core/Trust.h"
#include "platform/files/FileObject.h"
#include "platform/sync/Security.h"
#include "wnplatform/inspect.h"

namespace wnplatform {
namespace {

struct Opened {
    Descriptor descriptor;
    bool existed = true;
    int error = 0;
};

Opened Try(const std::string& path, int flags) noexcept {
    // A pipe without a partner must not hold the caller up, and no terminal is to become the process's own.
    Descriptor descriptor(open(path.c_str(), flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0666));
    const int error = descriptor ? 0 : errno;
    return {std::move(descriptor), (flags & O_CREAT) == 0, error};
}

// Opens the file or makes it, and knows which of both it did, also when other processes make and delete it
// meanwhile.
Opened OpenOrMake(const std::string& path, int flags) noexcept {
    constexpr int kAttempts = 16;
    Opened result;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        result = Try(path, flags);
        if (result.error != ENOENT) return result;
        result = Try(path, flags | O_CREAT | O_EXCL);
        if (result.error != EEXIST) return result;
    }
    return result;  // a link to nothing, for one
}

Opened OpenByDisposition(const std::string& path, int flags, DWORD disposition) noexcept {
    switch (disposition) {
        case CREATE_ALWAYS:
            return OpenOrMake(path, flags | O_TRUNC);
        case OPEN_ALWAYS:
            return OpenOrMake(path, flags);
        default:
            return Try(path, flags);
    }
}

int OpenFlags(DWORD access) noexcept {
    const bool read = (access & GENERIC_READ) != 0;
    const bool write = (access & GENERIC_WRITE) != 0;
    if (read && write) return O_RDWR;
    if (write) return O_WRONLY;
    return O_RDONLY;
}

HANDLE Refuse(DWORD code) noexcept {
    SetLastError(code);
    return INVALID_HANDLE_VALUE;
}

HANDLE Create(const std::string& path, DWORD access, const SECURITY_ATTRIBUTES* security, DWORD disposition) {
    if (disposition < CREATE_ALWAYS || disposition > OPEN_ALWAYS) return Refuse(ERROR_INVALID_PARAMETER);
    if (path.empty()) return Refuse(ERROR_PATH_NOT_FOUND);

    Opened opened = OpenByDisposition(path, OpenFlags(access), disposition);
    if (opened.error != 0) return Refuse(PathError(opened.error, path));
    const int descriptor = opened.descriptor.Get();
    struct stat status;
    if (fstat(descriptor, &status) != 0) return Refuse(ErrorFromErrno(errno));
    if (S_ISDIR(status.st_mode)) return Refuse(ERROR_ACCESS_DENIED);
    const bool regular = S_ISREG(status.st_mode);
    if (!regular) fcntl(descriptor, F_SETFL, OpenFlags(access));
    if (!opened.existed && regular) SetNewAccess(descriptor, path, EveryoneMayOpen(security));

    const FileObject::Access granted{(access & GENERIC_READ) != 0, (access & GENERIC_WRITE) != 0, regular, true};
    const HANDLE handle = AddObject(std::make_unique<FileObject>(std::move(opened.descriptor), granted));
    const bool tells = disposition == OPEN_ALWAYS || disposition == CREATE_ALWAYS;
    SetLastError(tells && opened.existed ? ERROR_ALREADY_EXISTS : NO_ERROR);
    return handle;
}

HANDLE StandardOutput() noexcept {
    return Guarded(INVALID_HANDLE_VALUE, [] {
        struct stat status;
        // A process without standard output has no handle for it, which is no error.
        if (fstat(STDOUT_FILENO, &status) != 0) return HANDLE{nullptr};
        const FileObject::Access access{false, true, S_ISREG(status.st_mode), false};
        static const HANDLE handle = AddObject(std::make_unique<FileObject>(Descriptor(STDOUT_FILENO), access));
        return handle;
    });
}

}  // namespace

DWORD PathError(int error, const std::string& hostPath) noexcept {
    if (error == ENOTDIR || error == ELOOP) return ERROR_PATH_NOT_FOUND;
    if (error != ENOENT) return ErrorFromErrno(error);
    return Guarded(DWORD{ERROR_NOT_ENOUGH_MEMORY}, [&]() -> DWORD {
        const std::size_t end = hostPath.find_last_not_of('/');
        const std::size_t slash = end == std::string::npos ? end : hostPath.find_last_of('/', end);
        if (slash == std::string::npos || slash == 0) return ERROR_FILE_NOT_FOUND;
        struct stat status;
        const bool folder = stat(hostPath.substr(0, slash).c_str(), &status) == 0 && S_ISDIR(status.st_mode);
        return folder ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND;
    });
}

}  // namespace wnplatform

using wnplatform::Guarded;
using wnplatform::HostPath;

HANDLE CreateFileA(LPCSTR path, DWORD access, DWORD, LPSECURITY_ATTRIBUTES security, DWORD disposition, DWORD,
                   HANDLE) {
    return Guarded(INVALID_HANDLE_VALUE,
                   [&] { return wnplatform::Create(HostPath(path), access, security, disposition); });
}

HANDLE CreateFileW(LPCWSTR path, DWORD access, DWORD, LPSECURITY_ATTRIBUTES security, DWORD disposition, DWORD,
                   HANDLE) {
    return Guarded(INVALID_HANDLE_VALUE,
                   [&] { return wnplatform::Create(HostPath(path), access, security, disposition); });
}

HANDLE GetStdHandle(DWORD which) {
    if (which == STD_OUTPUT_HANDLE) return wnplatform::StandardOutput();
    SetLastError(ERROR_INVALID_HANDLE);
    return INVALID_HANDLE_VALUE;
}
