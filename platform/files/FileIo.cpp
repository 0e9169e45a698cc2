// Bytes, positions and sizes of open files.
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/core/Errors.h"
#include "platform/files/FileObject.h"
#include "platform/files/Writing.h"

using wnplatform::ErrorFromErrno;
using wnplatform::Fail;
using wnplatform::FileObject;
using wnplatform::ObjectUse;

namespace {

constexpr DWORD kToTheEnd = 0xFFFFFFFFU;

off_t OffsetOf(const OVERLAPPED& at) noexcept {
    return static_cast<off_t>((ULONGLONG{at.OffsetHigh} << 32) | at.Offset);
}

// Reads until the buffer is full or the file ends; one read is all there is where waiting for more could take long.
// Returns false when nothing was read because of errno.
bool ReadBytes(const FileObject& file, char* buffer, DWORD bytes, const OVERLAPPED* at, DWORD& done) noexcept {
    while (done < bytes) {
        const ssize_t got = at ? pread(file.Get(), buffer + done, bytes - done, OffsetOf(*at) + done)
                               : read(file.Get(), buffer + done, bytes - done);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return done > 0;
        done += static_cast<DWORD>(got);
        if (got == 0 || !file.access.regular) break;
    }
    return true;
}

std::size_t WriteBytes(FileObject& file, LPCVOID buffer, DWORD bytes, const OVERLAPPED* at) noexcept {
    if (!file.access.regular) return wnplatform::WriteAll(file.Get(), buffer, bytes, true);
    if (!at) return wnplatform::WriteAll(file.Get(), buffer, bytes, false);
    if (at->Offset == kToTheEnd && at->OffsetHigh == kToTheEnd) {
        return file.Append(buffer, bytes);
    }
    const std::size_t written = wnplatform::WriteAllAt(file.Get(), buffer, bytes, OffsetOf(*at));
    if (written == bytes) lseek(file.Get(), OffsetOf(*at) + static_cast<off_t>(written), SEEK_SET);
    return written;
}

void Store(LPDWORD target, DWORD value) noexcept {
    if (target) *target = value;
}

DWORD NoPointer(DWORD code) noexcept {
    SetLastError(code);
    return INVALID_SET_FILE_POINTER;
}

}  // namespace

BOOL ReadFile(HANDLE handle, LPVOID buffer, DWORD bytes, LPDWORD bytesRead, OVERLAPPED* at) {
    Store(bytesRead, 0);
    const ObjectUse<FileObject> file(handle);
    if (!file) return FALSE;
    if (!file->access.read) return Fail(ERROR_ACCESS_DENIED);
    if (!buffer && bytes > 0) return Fail(ERROR_INVALID_PARAMETER);
    // A pipe has no offsets.
    if (!file->access.regular) at = nullptr;
    DWORD done = 0;
    if (!ReadBytes(*file, static_cast<char*>(buffer), bytes, at, done)) return Fail(ErrorFromErrno(errno));
    Store(bytesRead, done);
    if (!at) return TRUE;
    lseek(file->Get(), OffsetOf(*at) + done, SEEK_SET);
    // Only a read that names its offset is told of the end as an error.
    return done == 0 && bytes > 0 ? Fail(ERROR_HANDLE_EOF) : TRUE;
}

BOOL WriteFile(HANDLE handle, LPCVOID buffer, DWORD bytes, LPDWORD bytesWritten, OVERLAPPED* at) {
    Store(bytesWritten, 0);
    const ObjectUse<FileObject> file(handle);
    if (!file) return FALSE;
    if (!file->access.write) return Fail(ERROR_ACCESS_DENIED);
    if (!buffer && bytes > 0) return Fail(ERROR_INVALID_PARAMETER);
    const std::size_t written = WriteBytes(*file, buffer, bytes, at);
    const int error = errno;
    Store(bytesWritten, static_cast<DWORD>(written));
    return written == bytes ? TRUE : Fail(ErrorFromErrno(error));
}

DWORD SetFilePointer(HANDLE handle, LONG distance, LPLONG distanceHigh, DWORD method) {
    const ObjectUse<FileObject> file(handle);
    if (!file) return INVALID_SET_FILE_POINTER;
    if (distanceHigh || (method != FILE_BEGIN && method != FILE_END)) return NoPointer(ERROR_INVALID_PARAMETER);
    const off_t position = lseek(file->Get(), distance, method == FILE_BEGIN ? SEEK_SET : SEEK_END);
    if (position < 0) return NoPointer(errno == EINVAL && distance < 0 ? ERROR_NEGATIVE_SEEK : ErrorFromErrno(errno));
    const DWORD low = static_cast<DWORD>(position);
    if (low == INVALID_SET_FILE_POINTER) SetLastError(NO_ERROR);
    return low;
}

DWORD GetFileSize(HANDLE handle, LPDWORD sizeHigh) {
    const ObjectUse<FileObject> file(handle);
    if (!file) return INVALID_FILE_SIZE;
    struct stat status;
    if (!file->access.regular || fstat(file->Get(), &status) != 0) {
        SetLastError(ERROR_INVALID_FUNCTION);
        return INVALID_FILE_SIZE;
    }
    Store(sizeHigh, static_cast<DWORD>(status.st_size >> 32));
    const DWORD low = static_cast<DWORD>(status.st_size);
    if (low == INVALID_FILE_SIZE) SetLastError(NO_ERROR);
    return low;
}

BOOL SetEndOfFile(HANDLE handle) {
    const ObjectUse<FileObject> file(handle);
    if (!file) return FALSE;
    if (!file->access.write) return Fail(ERROR_ACCESS_DENIED);
    const off_t position = lseek(file->Get(), 0, SEEK_CUR);
    if (position < 0 || ftruncate(file->Get(), position) != 0) return Fail(ErrorFromErrno(errno));
    return TRUE;
}
