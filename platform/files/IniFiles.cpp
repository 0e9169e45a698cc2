#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "platform/core/Guarded.h"
#include "platform/core/HomeLock.h"
#include "platform/core/Trust.h"
#include "platform/files/Descriptor.h"
#include "platform/files/FileObject.h"
#include "platform/files/IniText.h"
#include "platform/files/Paths.h"
#include "platform/files/Reading.h"
#include "platform/files/Writing.h"
#include "platform/text/Texts.h"
#include "wnplatform/inspect.h"

namespace wnplatform {
namespace {

// A settings file is small; one that is not is no settings file.
constexpr off_t kLargestFile = 16 * 1024 * 1024;

std::string IniPath(const char* file) {
    const std::string path = Utf8FromNarrow(file);
    const bool bare = path.find_first_of("/\\:") == std::string::npos;
    return HostPathFromUtf8(bare ? Home() + "/windows/" + path : path);
}

// The file's bytes; nothing, with errno, when it cannot be read.
std::optional<std::string> ReadText(const std::string& path) {
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
    struct stat status;
    if (!file || fstat(file.Get(), &status) != 0) return std::nullopt;
    if (!S_ISREG(status.st_mode) || status.st_size > kLargestFile) {
        errno = S_ISREG(status.st_mode) ? EFBIG : EACCES;
        return std::nullopt;
    }
    std::string text;
    if (!ReadToEnd(file.Get(), text)) return std::nullopt;
    return text;
}

// Who may read and write the file that is replaced may read and write the new one.
bool SetAccess(int file, const struct stat* replaced, const std::string& path) {
    if (replaced) return KeepAccess(file, *replaced);
    if (fchmod(file, 0644) != 0) return false;
    SetNewAccess(file, path, false);
    return true;
}

// The new text takes the old one's place in one step, so that readers and a crash find either of them whole.
bool ReplaceText(const std::string& path, const std::string& text, const std::string& asked) {
    std::string temporary = path + ".XXXXXX";
    const Descriptor file(mkostemp(temporary.data(), O_CLOEXEC));
    if (!file) return false;
    struct stat status;
    const bool replaces = stat(path.c_str(), &status) == 0;
    const bool written = WriteAll(file.Get(), text.data(), text.size(), false) == text.size() &&
                         SetAccess(file.Get(), replaces ? &status : nullptr, asked) && fsync(file.Get()) == 0 &&
                         rename(temporary.c_str(), path.c_str()) == 0;
    if (written) return true;
    const int error = errno;
    unlink(temporary.c_str());
    errno = error;
    return false;
}

BOOL Write(std::string path, std::string_view section, std::optional<std::string_view> key,
           std::optional<std::string_view> value) {
    namespace fs = std::filesystem;
    std::error_code error;
    const std::string asked = path;
    // The file itself is replaced, not a link to it.
    if (const fs::path real = fs::canonical(path, error); !error) path = real.string();
    const fs::path parent = fs::path(path).parent_path();
    if (!parent.empty() && !fs::is_directory(parent, error)) return Fail(ERROR_PATH_NOT_FOUND);
    // Two writers must not both begin with the same old text.
    const HomeLock turn;
    if (!turn) return Fail(turn.Error());
    std::optional<std::string> text = ReadText(path);
    if (!text && errno != ENOENT) return Fail(PathError(errno, path));
    const bool written = ReplaceText(path, WithIniValue(text.value_or(""), section, key, value), asked);
    return written ? TRUE : Fail(PathError(errno, path));
}

// A number with a sign and a base ("0x", "0o", "0b"), up to the first character that is no digit of it; what does not
// fit into 32 bits loses its upper ones.
UINT NumberOf(std::string_view text) noexcept {
    bool negative = false;
    if (text.starts_with('-') || text.starts_with('+')) {
        negative = text.front() == '-';
        text.remove_prefix(1);
    }
    unsigned base = 10;
    if (text.size() > 1 && text[0] == '0') {
        base = text[1] == 'x' ? 16 : text[1] == 'o' ? 8 : text[1] == 'b' ? 2 : 10;
        if (base != 10) text.remove_prefix(2);
    }
    UINT number = 0;
    for (const char c : text) {
        unsigned digit = base;
        if (c >= '0' && c <= '9') digit = static_cast<unsigned>(c - '0');
        if ((c | 0x20) >= 'a' && (c | 0x20) <= 'f') digit = static_cast<unsigned>((c | 0x20) - 'a' + 10);
        if (digit >= base) break;
        number = number * base + digit;
    }
    return negative ? 0U - number : number;
}

bool IsFreeOf(std::string_view refused, const char* text) noexcept {
    return !text || std::string_view(text).find_first_of(refused) == std::string_view::npos;
}

// A key that would read as one once it is in the file, where the blanks before it do not count.
bool IsKey(std::string_view key) noexcept {
    const std::size_t first = key.find_first_not_of(" \t\v\f");
    return first != std::string_view::npos && key[first] != ';' && key[first] != '[';
}

}  // namespace
}  // namespace wnplatform

UINT GetPrivateProfileIntA(LPCSTR section, LPCSTR key, INT defaultValue, LPCSTR file) {
    const UINT otherwise = static_cast<UINT>(defaultValue);
    if (!section || !key || !file || !*file) return otherwise;
    return wnplatform::Guarded(otherwise, [&] {
        const std::optional<std::string> text = wnplatform::ReadText(wnplatform::IniPath(file));
        if (!text) return otherwise;
        const auto value = wnplatform::FindIniValue(*text, section, key);
        return value && !value->empty() ? wnplatform::NumberOf(*value) : otherwise;
    });
}

BOOL WritePrivateProfileStringA(LPCSTR section, LPCSTR key, LPCSTR value, LPCSTR file) {
    using wnplatform::IsFreeOf;
    return wnplatform::Guarded(FALSE, [&] {
        const bool fits = section && *section && file && *file && (!key || wnplatform::IsKey(key)) &&
                          IsFreeOf("\r\n]", section) && IsFreeOf("\r\n=", key) && IsFreeOf("\r\n", value);
        if (!fits) return wnplatform::Fail(ERROR_INVALID_PARAMETER);
        std::optional<std::string_view> newKey;
        if (key) newKey = key;
        std::optional<std::string_view> newValue;
        if (value) newValue = value;
        return wnplatform::Write(wnplatform::IniPath(file), section, newKey, newValue);
    });
}
