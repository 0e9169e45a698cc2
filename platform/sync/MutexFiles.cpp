#include "platform/sync/MutexFiles.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>

#include "platform/core/HomeLock.h"
#include "platform/core/Trust.h"

namespace wnplatform {
namespace {

// Letters and digits as they are, the rest in hexadecimal, so that names stay apart and can be read in the folder.
std::string Readable(const std::string& name) {
    std::string text;
    for (const char c : name) {
        const bool plain = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '-' ||
                           c == '_' || c == '.';
        char code[4];
        std::snprintf(code, sizeof(code), "%%%02x", static_cast<unsigned>(static_cast<unsigned char>(c)));
        text += plain ? std::string(1, c) : code;
    }
    return text;
}

// FNV-1a, 64 bits.
std::uint64_t Hash(const std::string& text) noexcept {
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
    return hash;
}

std::string Hexadecimal(std::uint64_t value) {
    char text[17];
    std::snprintf(text, sizeof(text), "%llx", static_cast<unsigned long long>(value));
    return text;
}

}  // namespace

std::string MutexFilePath(const std::string& name) {
    constexpr std::size_t kLongestReadable = 128;
    std::string readable = Readable(name);
    if (readable.size() > kLongestReadable) {
        readable = readable.substr(0, kLongestReadable) + "~" + Hexadecimal(Hash(name));
    }
    return LocksFolder() + "/mutex-" + readable;
}

Descriptor OpenMutexFile(const std::string& path) noexcept {
    return Descriptor(open(path.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
}

Descriptor MakeMutexFile(const std::string& path, std::size_t bytes) noexcept {
    Descriptor file(open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!file) return file;
    // The memory is taken now, so that a full host shows here and not at the first access.
    const int error = posix_fallocate(file.Get(), 0, static_cast<off_t>(bytes));
    if (error == 0 && ShareWithHome(file.Get(), Others::Nothing)) return file;
    if (error != 0) errno = error;
    const int reason = errno;
    unlink(path.c_str());
    errno = reason;
    return {};
}

bool LockMutexFile(const Descriptor& file, int kind) noexcept {
    while (flock(file.Get(), kind | LOCK_NB) != 0) {
        if (errno != EINTR) return false;
    }
    return true;
}

}  // namespace wnplatform
