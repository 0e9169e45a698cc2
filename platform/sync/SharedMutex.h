// A mutex in memory that processes share.
#pragma once

#include <pthread.h>

#include <atomic>

#include "winbase.h"

namespace wnplatform {

// Recursive for its owner's thread; the next owner is told when a thread ended while it owned it. Lives at a place
// that other processes may map too, so nobody destroys it: it goes with its memory.
class SharedMutex {
public:
    // Makes a free mutex in zeroed memory; returns an errno value.
    int Make() noexcept;

    // As WaitForSingleObject on a mutex.
    DWORD Wait(DWORD milliseconds) noexcept;
    // False when the calling thread does not own it.
    bool Release() noexcept;
    // True when a thread of this process owns it, or owned it at its end. The memory must then stay mapped: the host
    // looks the mutex up there when the thread ends.
    bool IsOwnedHere() const noexcept;

private:
    // EBUSY when the mutex is not free within a few turns of the other threads.
    int TrySoon() noexcept;
    DWORD Answer(int result) noexcept;
    void Taken(DWORD depth) noexcept;

    pthread_mutex_t m_mutex;
    DWORD m_depth;                 // waits that the owner has not released yet; touched by the owner alone
    std::atomic<DWORD> m_thread;   // the owner, 0 without one; of an owner that ended until the next one comes
    std::atomic<DWORD> m_process;  // that thread's process
};

}  // namespace wnplatform
