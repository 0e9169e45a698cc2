#include "platform/sync/SharedMutex.h"

#include <sched.h>

#include <cerrno>
#include <ctime>

#include "platform/core/Errors.h"

#ifdef __SANITIZE_THREAD__
#include <sanitizer/tsan_interface.h>
#endif

namespace wnplatform {
namespace {

timespec DeadlineAfter(DWORD milliseconds) noexcept {
    timespec deadline;
    clock_gettime(CLOCK_MONOTONIC, &deadline);
    const long nanoseconds = deadline.tv_nsec + static_cast<long>(milliseconds % 1000) * 1'000'000;
    deadline.tv_sec += static_cast<time_t>(milliseconds / 1000) + nanoseconds / 1'000'000'000;
    deadline.tv_nsec = nanoseconds % 1'000'000'000;
    return deadline;
}

// The thread sanitizer follows every lock of the threads library but this one, and has to be told.
#ifdef __SANITIZE_THREAD__
int LockUntil(pthread_mutex_t* mutex, const timespec& deadline) noexcept {
    __tsan_mutex_pre_lock(mutex, 0);
    const int result = pthread_mutex_clocklock(mutex, CLOCK_MONOTONIC, &deadline);
    const bool taken = result == 0 || result == EOWNERDEAD;
    __tsan_mutex_post_lock(mutex, taken ? 0 : __tsan_mutex_try_lock_failed, 0);
    return result;
}
#else
int LockUntil(pthread_mutex_t* mutex, const timespec& deadline) noexcept {
    return pthread_mutex_clocklock(mutex, CLOCK_MONOTONIC, &deadline);
}
#endif

}  // namespace

int SharedMutex::Make() noexcept {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
    pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    const int result = pthread_mutex_init(&m_mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
    return result;
}

DWORD SharedMutex::Wait(DWORD milliseconds) noexcept {
    // A free mutex is taken without a call into the kernel, whatever the patience.
    int result = pthread_mutex_trylock(&m_mutex);
    if (result == EBUSY && milliseconds == 0) return WAIT_TIMEOUT;
    if (result == EBUSY) result = TrySoon();
    if (result != EBUSY) return Answer(result);
    if (milliseconds == INFINITE) return Answer(pthread_mutex_lock(&m_mutex));
    return Answer(LockUntil(&m_mutex, DeadlineAfter(milliseconds)));
}

// Most owners hold a mutex for less time than it takes to fall asleep and to be woken.
int SharedMutex::TrySoon() noexcept {
    constexpr int kTries = 10;
    for (int i = 0; i < kTries; ++i) {
        sched_yield();
        if (m_thread.load(std::memory_order_relaxed) != 0) continue;
        const int result = pthread_mutex_trylock(&m_mutex);
        if (result != EBUSY) return result;
    }
    return EBUSY;
}

DWORD SharedMutex::Answer(int result) noexcept {
    switch (result) {
        case 0:
            Taken(m_depth + 1);
            return WAIT_OBJECT_0;
        case EOWNERDEAD:
            pthread_mutex_consistent(&m_mutex);
            Taken(1);
            return WAIT_ABANDONED;
        case ETIMEDOUT:
            return WAIT_TIMEOUT;
        default:
            SetLastError(ErrorFromErrno(result));
            return WAIT_FAILED;
    }
}

void SharedMutex::Taken(DWORD depth) noexcept {
    m_depth = depth;
    m_thread.store(GetCurrentThreadId(), std::memory_order_relaxed);
    m_process.store(GetCurrentProcessId(), std::memory_order_relaxed);
}

bool SharedMutex::Release() noexcept {
    // The owner alone finds its own id here, so no order between threads is needed.
    if (m_thread.load(std::memory_order_relaxed) != GetCurrentThreadId()) return false;
    if (--m_depth == 0) {
        m_thread.store(0, std::memory_order_relaxed);
        m_process.store(0, std::memory_order_relaxed);
    }
    return pthread_mutex_unlock(&m_mutex) == 0;
}

bool SharedMutex::IsOwnedHere() const noexcept {
    return m_process.load(std::memory_order_relaxed) == GetCurrentProcessId();
}

}  // namespace wnplatform
