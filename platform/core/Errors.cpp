#include "platform/core/Errors.h"

#include <cerrno>

namespace {

thread_local DWORD t_lastError = ERROR_SUCCESS;

}  // namespace

DWORD GetLastError() { return t_lastError; }

void SetLastError(DWORD code) { t_lastError = code; }

namespace wnplatform {

DWORD ErrorFromErrno(int error) noexcept {
    switch (error) {
        case 0:
            return ERROR_SUCCESS;
        case ENOENT:
            return ERROR_FILE_NOT_FOUND;
        case ENOTDIR:
            return ERROR_PATH_NOT_FOUND;
        case EACCES:
        case EPERM:
        case EROFS:
        case EISDIR:
        case ETXTBSY:
            return ERROR_ACCESS_DENIED;
        case EEXIST:
        case ENOTEMPTY:
            return ERROR_ALREADY_EXISTS;
        case EMFILE:
        case ENFILE:
            return ERROR_TOO_MANY_OPEN_FILES;
        case EBADF:
            return ERROR_INVALID_HANDLE;
        case ENOMEM:
            return ERROR_NOT_ENOUGH_MEMORY;
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            return ERROR_DISK_FULL;
        case EINVAL:
            return ERROR_INVALID_PARAMETER;
        case ENAMETOOLONG:
            return ERROR_FILENAME_EXCED_RANGE;
        case ELOOP:
            return ERROR_PATH_NOT_FOUND;
        case EAGAIN:
            return ERROR_LOCK_VIOLATION;
        case ENOEXEC:
            return ERROR_BAD_EXE_FORMAT;
        case EPIPE:
            return ERROR_NO_DATA;
        case EIO:
            return ERROR_READ_FAULT;
        default:
            return ERROR_INVALID_FUNCTION;
    }
}

}  // namespace wnplatform
