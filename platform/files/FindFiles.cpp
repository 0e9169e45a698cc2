#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/core/Errors.h"
#include "platform/core/Guarded.h"
#include "platform/core/Handles.h"
#include "platform/files/Descriptor.h"
#include "platform/files/Paths.h"
#include "platform/files/Wildcards.h"
#include "platform/text/CaseFold.h"
#include "platform/text/Texts.h"

namespace wnplatform {
namespace {

// A search holds the names that matched when it began; each file's attributes are read when it is handed out.
class SearchObject final : public KernelObject {
public:
    static constexpr ObjectKind kKind = ObjectKind::Search;

    SearchObject(Descriptor folder, std::vector<std::string> names) noexcept
        : KernelObject(kKind), m_folder(std::move(folder)), m_names(std::move(names)) {}

    // False when there is no file left. Files that were deleted meanwhile are passed over.
    bool Next(WIN32_FIND_DATAA& found);

private:
    std::mutex m_lock;
    Descriptor m_folder;
    std::vector<std::string> m_names;
    std::size_t m_next = 0;
};

// 100-nanosecond steps since the year 1601.
FILETIME FileTime(const struct statx_timestamp& time) noexcept {
    constexpr LONGLONG kSecondsTo1970 = 11644473600;
    const auto steps = static_cast<ULONGLONG>((time.tv_sec + kSecondsTo1970) * 10'000'000 + time.tv_nsec / 100);
    return {static_cast<DWORD>(steps), static_cast<DWORD>(steps >> 32)};
}

std::optional<struct statx> Status(int folder, const std::string& name) noexcept {
    struct statx status;
    // A link to nothing is shown as the link.
    for (const int flags : {0, AT_SYMLINK_NOFOLLOW}) {
        if (statx(folder, name.c_str(), flags, STATX_BASIC_STATS | STATX_BTIME, &status) == 0) return status;
    }
    return std::nullopt;
}

bool SearchObject::Next(WIN32_FIND_DATAA& found) {
    const std::scoped_lock guard(m_lock);
    while (m_next < m_names.size()) {
        const std::string& name = m_names[m_next++];
        const std::string reported = NarrowFromUtf8(name);
        const std::optional<struct statx> status = Status(m_folder.Get(), name);
        if (!status || reported.size() >= sizeof(found.cFileName)) continue;
        found = {};
        found.dwFileAttributes = S_ISDIR(status->stx_mode) ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_NORMAL;
        found.ftCreationTime = FileTime(status->stx_mask & STATX_BTIME ? status->stx_btime : status->stx_mtime);
        found.ftLastAccessTime = FileTime(status->stx_atime);
        found.ftLastWriteTime = FileTime(status->stx_mtime);
        found.nFileSizeHigh = static_cast<DWORD>(status->stx_size >> 32);
        found.nFileSizeLow = static_cast<DWORD>(status->stx_size);
        std::memcpy(found.cFileName, reported.c_str(), reported.size() + 1);
        return true;
    }
    return false;
}

// The names of a folder that match, in the order of names; of a pattern that is one file's exact name only that one.
std::vector<std::string> MatchingNames(int folder, const std::string& pattern) {
    // What holds no wildcard is found without a walk through the folder.
    const bool isName = pattern.find_first_of("*?") == std::string::npos;
    struct stat unused;
    if (isName && fstatat(folder, pattern.c_str(), &unused, AT_SYMLINK_NOFOLLOW) == 0) return {pattern};
    const int copy = openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const std::unique_ptr<DIR, int (*)(DIR*)> directory(copy < 0 ? nullptr : fdopendir(copy), closedir);
    std::vector<std::string> names;
    if (!directory) return names;
    while (const dirent* entry = readdir(directory.get())) {
        if (pattern == entry->d_name) return {pattern};
        if (MatchesPattern(entry->d_name, pattern)) names.emplace_back(entry->d_name);
    }
    std::sort(names.begin(), names.end(), NameLess());
    return names;
}

HANDLE Refuse(DWORD code) noexcept {
    SetLastError(code);
    return INVALID_HANDLE_VALUE;
}

HANDLE Find(const std::string& path, WIN32_FIND_DATAA& found) {
    if (path.empty()) return Refuse(ERROR_PATH_NOT_FOUND);
    // The pattern itself is kept from the search for names that differ in case.
    const std::size_t end = path.find_last_of("/\\:");
    const std::size_t start = end == std::string::npos ? 0 : end + 1;
    const std::string pattern = path.substr(start);
    const std::string host = start == 0 ? "." : HostPathFromUtf8(path.substr(0, start));
    Descriptor folder(open(host.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!folder) return Refuse(errno == ENOENT ? ERROR_PATH_NOT_FOUND : ErrorFromErrno(errno));
    if (pattern.empty()) return Refuse(ERROR_FILE_NOT_FOUND);
    std::vector<std::string> names = MatchingNames(folder.Get(), pattern);
    auto search = std::make_unique<SearchObject>(std::move(folder), std::move(names));
    if (!search->Next(found)) return Refuse(ERROR_FILE_NOT_FOUND);
    return AddObject(std::move(search));
}

}  // namespace
}  // namespace wnplatform

HANDLE FindFirstFileA(LPCSTR pattern, WIN32_FIND_DATAA* found) {
    return wnplatform::Guarded(INVALID_HANDLE_VALUE, [pattern, found]() -> HANDLE {
        if (!pattern || !found) return wnplatform::Refuse(ERROR_INVALID_PARAMETER);
        return wnplatform::Find(wnplatform::Utf8FromNarrow(pattern), *found);
    });
}

BOOL FindNextFileA(HANDLE handle, WIN32_FIND_DATAA* found) {
    return wnplatform::Guarded(FALSE, [handle, found] {
        const wnplatform::ObjectUse<wnplatform::SearchObject> search(handle);
        if (!search) return FALSE;
        if (!found) return wnplatform::Fail(ERROR_INVALID_PARAMETER);
        return search->Next(*found) ? TRUE : wnplatform::Fail(ERROR_NO_MORE_FILES);
    });
}

BOOL FindClose(HANDLE handle) {
    return wnplatform::CloseObject(
        handle, [](wnplatform::ObjectKind kind) { return kind == wnplatform::ObjectKind::Search; });
}
