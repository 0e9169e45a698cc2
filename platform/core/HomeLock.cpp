#include "platform/core/HomeLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/core/Errors.h"
#include "platform/core/Guarded.h"
#include "platform/core/Time.h"
#include "platform/core/Trust.h"
#include "platform/files/Writing.h"
#include "wnplatform/inspect.h"

namespace wnplatform {
namespace {

constexpr char kFolder[] = "locks";

Descriptor OpenFolder(const std::string& path) noexcept {
    return Descriptor(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

void SayWhatIsWaitedFor(const std::string& path) {
    const std::string line = "wnCOM: waiting for another process of this home to unlock " + path + "\n";
    WriteAll(STDERR_FILENO, line.data(), line.size(), true);
}

// The host has no wait for such a lock that ends by itself, so it is asked for again and again. Most holders are done
// before a sleep would be over.
DWORD LockInTime(int folder, const std::string& path, Patience patience) {
    constexpr int kTriesWithoutSleep = 20;
    constexpr DWORD kPause = 2;
    const LONGLONG start = MonotonicMilliseconds();
    bool said = false;
    for (int tries = 0; flock(folder, LOCK_EX | LOCK_NB) != 0; ++tries) {
        if (errno != EWOULDBLOCK && errno != EINTR) return ErrorFromErrno(errno);
        const LONGLONG waited = MonotonicMilliseconds() - start;
        if (waited >= patience.whole) return ERROR_TIMEOUT;
        if (waited >= patience.silent && !said) {
            SayWhatIsWaitedFor(path);
            said = true;
        }
        Sleep(tries < kTriesWithoutSleep ? 0 : kPause);
    }
    return ERROR_SUCCESS;
}

}  // namespace

std::string LocksFolder() { return Home() + "/" + kFolder; }

HomeLock::HomeLock(Patience patience) noexcept
    : m_error(Guarded(DWORD{ERROR_NOT_ENOUGH_MEMORY}, [&] { return Take(patience); })) {}

DWORD HomeLock::Take(Patience patience) {
    const std::string path = LocksFolder();
    Descriptor folder = OpenFolder(path);
    if (!folder && errno == ENOENT && MakeSharedFolder(Home(), kFolder, Others::Nothing)) folder = OpenFolder(path);
    if (!folder) return ErrorFromErrno(errno);
    if (!IsOnlyForWriters(folder.Get())) return ERROR_ACCESS_DENIED;
    const DWORD error = LockInTime(folder.Get(), path, patience);
    if (error == ERROR_SUCCESS) m_folder = std::move(folder);
    return error;
}

HomeLock::~HomeLock() {
    // Not left to the closing: a process that is being started may share the descriptor for a moment.
    if (m_folder) flock(m_folder.Get(), LOCK_UN);
}

}  // namespace wnplatform
