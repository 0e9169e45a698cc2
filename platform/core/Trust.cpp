#include "platform/core/Trust.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "platform/files/Descriptor.h"
#include "wnplatform/inspect.h"

namespace wnplatform {
namespace {

bool WritesByGroup(const struct stat& home) noexcept { return (home.st_mode & S_IWGRP) != 0; }
bool WritesByOthers(const struct stat& home) noexcept { return (home.st_mode & S_IWOTH) != 0; }

// Hands the file over as far as the host lets this process: root may give it to anyone, others to their own groups.
bool Give(int file, const struct stat& own, uid_t user, gid_t group) noexcept {
    const uid_t newUser = geteuid() == 0 ? user : own.st_uid;
    if (own.st_uid == newUser && own.st_gid == group) return true;
    return fchown(file, newUser, group) == 0;
}

bool Share(int file, const struct stat& home, Others others) noexcept {
    struct stat own;
    if (fstat(file, &own) != 0) return false;
    const bool given = Give(file, own, home.st_uid, home.st_gid);
    mode_t shared = S_IRWXU;
    if (given && WritesByGroup(home)) shared |= S_IRWXG;
    if (WritesByOthers(home)) shared |= S_IRWXO;
    const mode_t readable = others == Others::Read ? own.st_mode & ~mode_t{S_IWGRP | S_IWOTH} : mode_t{0};
    return fchmod(file, (S_ISDIR(own.st_mode) ? 0777 : 0666) & (shared | readable)) == 0;
}

}  // namespace

bool ShareWithHome(int file, Others others) noexcept {
    struct stat home;
    return stat(Home().c_str(), &home) == 0 && Share(file, home, others);
}

bool MakeSharedFolder(const std::string& home, const char* name, Others others) {
    const std::string path = home + "/" + name;
    struct stat status;
    if (stat(home.c_str(), &status) != 0) return false;
    // Narrow at first: what is shared too late is refused for a moment, what is shared too early may be misused.
    if (mkdir(path.c_str(), others == Others::Nothing ? 0700 : 0755) != 0) return errno == EEXIST;
    const Descriptor folder(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    return folder && Share(folder.Get(), status, others);
}

bool KeepAccess(int file, const struct stat& replaced) noexcept {
    struct stat own;
    if (fstat(file, &own) != 0) return false;
    const bool given = Give(file, own, replaced.st_uid, replaced.st_gid);
    return fchmod(file, replaced.st_mode & (given ? 0777 : 0707)) == 0;
}

void SetNewAccess(int file, const std::string& path, bool nullAccessList) noexcept {
    if (nullAccessList) {
        ShareWithHome(file, Others::Nothing);
    } else if (path.starts_with(Home()) && path[Home().size()] == '/') {
        ShareWithHome(file, Others::Read);
    }
}

bool IsOnlyForWriters(int folder) noexcept {
    struct stat home;
    struct stat own;
    if (stat(Home().c_str(), &home) != 0 || fstat(folder, &own) != 0) return false;
    const bool group = WritesByGroup(home);
    const bool others = WritesByOthers(home);
    const mode_t wanted = S_IRWXU | (group ? S_IRWXG : 0) | (others ? S_IRWXO : 0);
    const bool right = (own.st_mode & 0777) == wanted && (!group || own.st_gid == home.st_gid);
    if (!right && Share(folder, home, Others::Nothing) && fstat(folder, &own) != 0) return false;
    const bool known = own.st_uid == home.st_uid || own.st_uid == geteuid() || own.st_uid == 0 || group || others;
    const bool groupFits = (own.st_mode & S_IRWXG) == 0 || others || (group && own.st_gid == home.st_gid);
    return known && groupFits && (others || (own.st_mode & S_IRWXO) == 0);
}

}  // namespace wnplatform
