#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <limits>

#include "platform/core/Errors.h"
#include "platform/core/Guarded.h"
#include "platform/files/FileObject.h"

namespace wnplatform {
namespace {

using Range = FileObject::Range;

constexpr std::uint64_t kHostEnd = std::numeric_limits<off_t>::max();

Range RangeOf(DWORD offset, DWORD offsetHigh, DWORD bytes, DWORD bytesHigh) noexcept {
    return {(std::uint64_t{offsetHigh} << 32) | offset, (std::uint64_t{bytesHigh} << 32) | bytes};
}

// A range of no bytes stands between the bytes and is in nobody's way.
bool Overlap(const Range& a, const Range& b) noexcept {
    return a.length > 0 && b.length > 0 && a.offset <= b.offset + (b.length - 1) &&
           b.offset <= a.offset + (a.length - 1);
}

// Locks of the open file description: they bind the handles of one process too, and go with the handle.
bool SetHostLock(int descriptor, const Range& range, short type) noexcept {
    if (range.length == 0) return true;
    struct flock lock {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = static_cast<off_t>(range.offset);
    // What reaches beyond the host's last offset covers the rest, which the host writes as a length of 0.
    const bool toTheEnd = range.length > kHostEnd - range.offset;
    lock.l_len = toTheEnd ? 0 : static_cast<off_t>(range.length);
    return fcntl(descriptor, F_OFD_SETLK, &lock) == 0;
}

BOOL Lock(FileObject& file, const Range& range) {
    if (!file.access.write) return Fail(ERROR_ACCESS_DENIED);
    const bool wraps = range.length > 0 && range.offset + (range.length - 1) < range.offset;
    if (wraps || range.offset > kHostEnd) return Fail(ERROR_INVALID_PARAMETER);
    const std::scoped_lock guard(file.rangesLock);
    const auto taken = [&range](const Range& held) { return Overlap(held, range); };
    if (std::any_of(file.ranges.begin(), file.ranges.end(), taken)) return Fail(ERROR_LOCK_VIOLATION);
    file.ranges.reserve(file.ranges.size() + 1);
    if (!SetHostLock(file.Get(), range, F_WRLCK)) {
        const bool held = errno == EAGAIN || errno == EACCES;
        return Fail(held ? ERROR_LOCK_VIOLATION : ErrorFromErrno(errno));
    }
    file.ranges.push_back(range);
    return TRUE;
}

BOOL Unlock(FileObject& file, const Range& range) noexcept {
    const std::scoped_lock guard(file.rangesLock);
    const auto held = std::find_if(file.ranges.begin(), file.ranges.end(), [&range](const Range& candidate) {
        return candidate.offset == range.offset && candidate.length == range.length;
    });
    if (held == file.ranges.end()) return Fail(ERROR_NOT_LOCKED);
    if (!SetHostLock(file.Get(), range, F_UNLCK)) return Fail(ErrorFromErrno(errno));
    file.ranges.erase(held);
    return TRUE;
}

}  // namespace
}  // namespace wnplatform

BOOL LockFile(HANDLE handle, DWORD offset, DWORD offsetHigh, DWORD bytes, DWORD bytesHigh) {
    return wnplatform::Guarded(FALSE, [&] {
        const wnplatform::ObjectUse<wnplatform::FileObject> file(handle);
        return file ? wnplatform::Lock(*file, wnplatform::RangeOf(offset, offsetHigh, bytes, bytesHigh)) : FALSE;
    });
}

BOOL UnlockFile(HANDLE handle, DWORD offset, DWORD offsetHigh, DWORD bytes, DWORD bytesHigh) {
    const wnplatform::ObjectUse<wnplatform::FileObject> file(handle);
    return file ? wnplatform::Unlock(*file, wnplatform::RangeOf(offset, offsetHigh, bytes, bytesHigh)) : FALSE;
}
