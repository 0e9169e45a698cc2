#include "platform/processes/ProcessObject.h"

#include <poll.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <ctime>

#include "platform/core/Errors.h"
#include "platform/core/Time.h"

namespace wnplatform {
namespace {

constexpr DWORD kSignalled = 128;

// Waits for the process behind the descriptor that it owns.
void* Reap(void* argument) {
    const Descriptor descriptor(static_cast<int>(reinterpret_cast<std::intptr_t>(argument)));
    siginfo_t status;
    while (waitid(P_PIDFD, static_cast<id_t>(descriptor.Get()), &status, WEXITED) != 0 && errno == EINTR) {
    }
    return nullptr;
}

// The host keeps an ended child until its parent asks for the status. A thread that costs next to nothing does so;
// where none can be had, the child is kept until this process ends.
void ReapInBackground(int descriptor) noexcept {
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    Descriptor copy(dup(descriptor));
    pthread_t thread;
    void* argument = reinterpret_cast<void*>(static_cast<std::intptr_t>(copy.Get()));
    if (copy && pthread_create(&thread, &attributes, Reap, argument) == 0) copy.Detach();
    pthread_attr_destroy(&attributes);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

}  // namespace

Process::~Process() {
    if (!HasEnded()) ReapInBackground(m_descriptor.Get());
}

bool Process::HasEnded() noexcept {
    const std::scoped_lock guard(m_lock);
    if (m_exitCode) return true;
    siginfo_t status{};
    const auto id = static_cast<id_t>(m_descriptor.Get());
    if (!m_descriptor || (waitid(P_PIDFD, id, &status, WEXITED | WNOHANG) != 0 && errno == ECHILD)) {
        // A program that ignores its children's ends never learns how they ended.
        m_exitCode = 0;
        return true;
    }
    if (status.si_pid == 0) return false;
    const auto code = static_cast<DWORD>(status.si_status);
    m_exitCode = status.si_code == CLD_EXITED ? code : kSignalled + code;
    return true;
}

DWORD Process::Wait(DWORD milliseconds) noexcept {
    const LONGLONG deadline = MonotonicMilliseconds() + milliseconds;
    while (!HasEnded()) {
        const LONGLONG left = deadline - MonotonicMilliseconds();
        if (milliseconds != INFINITE && left <= 0) return WAIT_TIMEOUT;
        const timespec patience{static_cast<time_t>(left / 1000), static_cast<long>(left % 1000) * 1'000'000};
        pollfd ended{m_descriptor.Get(), POLLIN, 0};
        if (ppoll(&ended, 1, milliseconds == INFINITE ? nullptr : &patience, nullptr) < 0 && errno != EINTR) {
            SetLastError(ErrorFromErrno(errno));
            return WAIT_FAILED;
        }
    }
    return WAIT_OBJECT_0;
}

DWORD Process::ExitCode() noexcept {
    if (!HasEnded()) return STILL_ACTIVE;
    const std::scoped_lock guard(m_lock);
    return *m_exitCode;
}

}  // namespace wnplatform
