#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "components/cache/DatabaseFile.h"
#include "wnplatform/inspect.h"

namespace wncom::components {

// SQLite would make the file for its own user alone. Whoever may write the home shares the cache; the journal takes
// its mode from the database.
std::string DatabaseFile(const std::string& path) {
    const std::string host = wnplatform::HostPath(path.c_str());
    struct stat home;
    if (stat(wnplatform::Home().c_str(), &home) != 0) return host;
    const int made = open(host.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (made < 0) return host;  // it exists, or SQLite says why it cannot be made
    // The group first: a change of it may take bits of the mode away. Who may not change it keeps the group.
    if (fchown(made, static_cast<uid_t>(-1), home.st_gid) == 0) fchmod(made, home.st_mode & 0666);
    close(made);
    return host;
}

}  // namespace wncom::components
