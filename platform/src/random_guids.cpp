#include <pthread.h>
#include <sys/random.h>

#include <atomic>
#include <cerrno>
#include <cstring>

#include "objbase.h"

namespace {

// A child of a fork must not use what its parent will use too.
std::atomic<unsigned> g_forks{0};
[[maybe_unused]] const int g_watched = pthread_atfork(nullptr, nullptr, [] { g_forks.fetch_add(1); });

// The kernel's own random bytes, fetched for many identifiers at a time: their quality is the kernel's, and one
// identifier costs a small part of a system call.
struct RandomBytes {
    unsigned char bytes[1024];
    std::size_t left = 0;
    unsigned forks = 0;

    bool Take(void* destination, std::size_t count) {
        const unsigned now = g_forks.load(std::memory_order_relaxed);
        if (left < count || forks != now) {
            if (!Fill()) return false;
            forks = now;
        }
        left -= count;
        std::memcpy(destination, bytes + left, count);
        return true;
    }

    bool Fill() {
        std::size_t filled = 0;
        while (filled < sizeof bytes) {
            const ssize_t got = getrandom(bytes + filled, sizeof bytes - filled, 0);
            if (got > 0) {
                filled += static_cast<std::size_t>(got);
            } else if (errno != EINTR) {
                return false;
            }
        }
        left = sizeof bytes;
        return true;
    }
};

thread_local RandomBytes t_random;

}  // namespace

HRESULT CoCreateGuid(GUID* guid) {
    if (!guid) return E_INVALIDARG;
    if (!t_random.Take(guid, sizeof *guid)) {
        *guid = GUID_NULL;
        return E_FAIL;
    }
    guid->Data3 = static_cast<std::uint16_t>((guid->Data3 & 0x0FFF) | 0x4000);
    guid->Data4[0] = static_cast<std::uint8_t>((guid->Data4[0] & 0x3F) | 0x80);
    return S_OK;
}
