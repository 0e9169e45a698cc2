#include "platform/sync/MutexFiles.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "wnplatform/inspect.h"

namespace wnplatform {
namespace {

// The folder that hosts keep in memory; elsewhere the one for temporary files, which is good enough: a file that
// nobody holds open is made anew.
std::string MemoryFolder() {
    constexpr const char* kShared = "/dev/shm";
    if (access(kShared, W_OK | X_OK) == 0) return kShared;
    const char* temporary = std::getenv("TMPDIR");
    return temporary && *temporary ? temporary : "/tmp";
}

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

// Every user of the host may write to the folder, so a file there may be a stranger's: those count who own the home,
// or who could write to it anyway.
bool IsTrusted(int file) noexcept {
    struct stat status;
    struct stat home;
    if (fstat(file, &status) != 0 || !S_ISREG(status.st_mode) || stat(Home().c_str(), &home) != 0) return false;
    const bool shared = (home.st_mode & (S_IWGRP | S_IWOTH)) != 0;
    return shared || status.st_uid == geteuid() || status.st_uid == home.st_uid || status.st_uid == 0;
}

bool Lock(int descriptor, int kind) noexcept {
    while (flock(descriptor, kind) != 0) {
        if (errno != EINTR) return false;
    }
    return true;
}

}  // namespace

MutexFilesLock::MutexFilesLock() noexcept : m_home(open(Home().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (m_home && !Lock(m_home.Get(), LOCK_EX)) m_home = Descriptor();
}

MutexFilesLock::~MutexFilesLock() {
    // Not left to the closing: a process that is being started may share the descriptor for a moment.
    if (m_home) Lock(m_home.Get(), LOCK_UN);
}

std::string MutexFilePath(const std::string& name) {
    constexpr std::size_t kLongestReadable = 128;
    struct stat home {};
    stat(Home().c_str(), &home);
    std::string readable = Readable(name);
    if (readable.size() > kLongestReadable) {
        readable = readable.substr(0, kLongestReadable) + "~" + Hexadecimal(Hash(name));
    }
    return MemoryFolder() + "/wncom-" + Hexadecimal(home.st_dev) + "-" + Hexadecimal(home.st_ino) + "-" + readable;
}

Descriptor OpenMutexFile(const std::string& path) noexcept {
    Descriptor file(open(path.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (file && !IsTrusted(file.Get())) {
        errno = EACCES;
        return {};
    }
    return file;
}

Descriptor MakeMutexFile(const std::string& path, std::size_t bytes, bool everyone) noexcept {
    Descriptor file(open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!file) return file;
    // The memory is taken now, so that a full host shows here and not at the first access.
    const int error = posix_fallocate(file.Get(), 0, static_cast<off_t>(bytes));
    if (error != 0 || (everyone && fchmod(file.Get(), 0666) != 0)) {
        unlink(path.c_str());
        errno = error != 0 ? error : EPERM;
        return {};
    }
    return file;
}

bool LockMutexFile(const Descriptor& file, int kind) noexcept { return Lock(file.Get(), kind | LOCK_NB); }

}  // namespace wnplatform
