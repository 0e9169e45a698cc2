#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <optional>
#include <string>

#include "platform/core/Errors.h"
#include "platform/core/Guarded.h"
#include "platform/core/Handles.h"
#include "platform/files/FileObject.h"
#include "platform/files/Paths.h"
#include "wnplatform/inspect.h"

namespace wnplatform {
namespace {

// A search has given all it has when it begins.
struct SearchObject final : KernelObject {
    SearchObject() noexcept : KernelObject(ObjectKind::Search) {}
};

// 100-nanosecond steps since the year 1601.
FILETIME FileTime(const struct statx_timestamp& time) noexcept {
    constexpr LONGLONG kSecondsTo1970 = 11644473600;
    const auto steps = static_cast<ULONGLONG>((time.tv_sec + kSecondsTo1970) * 10'000'000 + time.tv_nsec / 100);
    return {static_cast<DWORD>(steps), static_cast<DWORD>(steps >> 32)};
}

HANDLE Refuse(DWORD code) noexcept {
    SetLastError(code);
    return INVALID_HANDLE_VALUE;
}

HANDLE Find(const std::string& path, WIN32_FIND_DATAA& found) {
    struct statx status;
    if (path.empty()) return Refuse(ERROR_PATH_NOT_FOUND);
    if (statx(AT_FDCWD, path.c_str(), 0, STATX_BASIC_STATS | STATX_BTIME, &status) != 0) {
        return Refuse(PathError(errno, path));
    }
    const std::string name = ReportedPath(path.substr(path.find_last_of('/') + 1));
    if (name.empty() || name.size() >= sizeof(found.cFileName)) return Refuse(ERROR_FILE_NOT_FOUND);
    found = {};
    found.dwFileAttributes = S_ISDIR(status.stx_mode) ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_NORMAL;
    found.ftCreationTime = FileTime(status.stx_mask & STATX_BTIME ? status.stx_btime : status.stx_mtime);
    found.ftLastAccessTime = FileTime(status.stx_atime);
    found.ftLastWriteTime = FileTime(status.stx_mtime);
    found.nFileSizeHigh = static_cast<DWORD>(status.stx_size >> 32);
    found.nFileSizeLow = static_cast<DWORD>(status.stx_size);
    std::memcpy(found.cFileName, name.c_str(), name.size() + 1);
    return AddObject(std::make_unique<SearchObject>());
}

}  // namespace
}  // namespace wnplatform

HANDLE FindFirstFileA(LPCSTR path, WIN32_FIND_DATAA* found) {
    return wnplatform::Guarded(INVALID_HANDLE_VALUE, [path, found]() -> HANDLE {
        if (!found) return wnplatform::Refuse(ERROR_INVALID_PARAMETER);
        return wnplatform::Find(wnplatform::HostPath(path), *found);
    });
}

BOOL FindClose(HANDLE handle) {
    return wnplatform::CloseObject(
        handle, [](wnplatform::ObjectKind kind) { return kind == wnplatform::ObjectKind::Search; });
}
