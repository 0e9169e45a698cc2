#include "platform/files/Writing.h"

#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <ctime>

namespace wnplatform {
namespace {

// Holds SIGPIPE back from the thread while it writes. One that was raised meanwhile is taken away again: the caller
// learns of it from errno, and the process may have no handler for it.
class WithoutPipeSignal {
public:
    explicit WithoutPipeSignal(bool wanted) noexcept : m_active(wanted) {
        if (!m_active) return;
        sigemptyset(&m_pipe);
        sigaddset(&m_pipe, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        m_wasPending = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &m_pipe, &m_before);
    }
    WithoutPipeSignal(const WithoutPipeSignal&) = delete;
    WithoutPipeSignal& operator=(const WithoutPipeSignal&) = delete;
    ~WithoutPipeSignal() {
        if (!m_active) return;
        const int error = errno;
        const timespec now{};
        if (!m_wasPending && error == EPIPE) sigtimedwait(&m_pipe, nullptr, &now);
        pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
        errno = error;
    }

private:
    bool m_active;
    bool m_wasPending = false;
    sigset_t m_pipe{};
    sigset_t m_before{};
};

// A file at the size limit of the process is an error of the write, like a full disk, and not the process's end.
// Whoever has chosen what the signal does keeps that.
void TakeSizeLimitAsError() noexcept {
    static const bool once = [] {
        struct sigaction chosen;
        if (sigaction(SIGXFSZ, nullptr, &chosen) == 0 && chosen.sa_handler == SIG_DFL) signal(SIGXFSZ, SIG_IGN);
        return true;
    }();
    static_cast<void>(once);
}

// Calls write(bytes, count, done) until everything is written or it fails.
template <class Write>
std::size_t Complete(const void* bytes, std::size_t count, Write write) noexcept {
    TakeSizeLimitAsError();
    std::size_t done = 0;
    while (done < count) {
        const ssize_t written = write(static_cast<const char*>(bytes) + done, count - done, done);
        if (written < 0 && errno == EINTR) continue;
        if (written == 0) errno = EIO;
        if (written <= 0) break;
        done += static_cast<std::size_t>(written);
    }
    return done;
}

}  // namespace

std::size_t WriteAll(int descriptor, const void* bytes, std::size_t count, bool maySignal) noexcept {
    const WithoutPipeSignal quiet(maySignal);
    return Complete(bytes, count, [descriptor](const char* at, std::size_t left, std::size_t) {
        return write(descriptor, at, left);
    });
}

std::size_t WriteAllAt(int descriptor, const void* bytes, std::size_t count, off_t offset) noexcept {
    return Complete(bytes, count, [descriptor, offset](const char* at, std::size_t left, std::size_t done) {
        return pwrite(descriptor, at, left, offset + static_cast<off_t>(done));
    });
}

std::size_t AppendAll(int descriptor, const void* bytes, std::size_t count) noexcept {
    return Complete(bytes, count, [descriptor](const char* at, std::size_t left, std::size_t) {
        const iovec piece{const_cast<char*>(at), left};
        const ssize_t written = pwritev2(descriptor, &piece, 1, -1, RWF_APPEND);
        // File systems without this way of writing leave a gap between the two steps; callers who share a file there
        // are kept apart by a lock of their own.
        if (written >= 0 || (errno != EOPNOTSUPP && errno != ENOSYS)) return written;
        return lseek(descriptor, 0, SEEK_END) < 0 ? ssize_t{-1} : write(descriptor, at, left);
    });
}

}  // namespace wnplatform
