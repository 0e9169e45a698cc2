#include <pthread.h>
#include <sys/random.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <random>

#include "objbase.h"

namespace {

// A child of a fork must not use what its parent will use too.
std::atomic<unsigned> g_forks{0};
[[maybe_unused]] const int g_watched = pthread_atfork(nullptr, nullptr, [] { g_forks.fetch_add(1); });

// A generator of the thread's own, begun with 256 of the kernel's random bits: identifiers are made with every traced
// call and have to be unlike each other, not secret, and bytes of the kernel cost ten times as much.
class RandomNumbers {
public:
    using Pair = std::array<std::uint64_t, 2>;

    bool Take(Pair& numbers) {
        const unsigned now = g_forks.load(std::memory_order_relaxed);
        if ((!m_seeded || m_forks != now) && !Seed(now)) return false;
        for (std::uint64_t& number : numbers) number = m_engine();
        return true;
    }

private:
    bool Seed(unsigned forks) {
        std::array<std::uint32_t, 8> seed;
        // So few bytes come whole or not at all.
        while (getrandom(seed.data(), sizeof seed, 0) != static_cast<ssize_t>(sizeof seed)) {
            if (errno != EINTR) return false;
        }
        std::seed_seq sequence(seed.begin(), seed.end());
        m_engine.seed(sequence);
        m_forks = forks;
        m_seeded = true;
        return true;
    }

    std::mt19937_64 m_engine;
    unsigned m_forks = 0;
    bool m_seeded = false;
};

thread_local RandomNumbers t_numbers;

}  // namespace

HRESULT CoCreateGuid(GUID* guid) {
    if (!guid) return E_INVALIDARG;
    RandomNumbers::Pair numbers;
    static_assert(sizeof numbers == sizeof *guid);
    if (!t_numbers.Take(numbers)) {
        *guid = GUID_NULL;
        return E_FAIL;
    }
    std::memcpy(guid, numbers.data(), sizeof *guid);
    guid->Data3 = static_cast<std::uint16_t>((guid->Data3 & 0x0FFF) | 0x4000);
    guid->Data4[0] = static_cast<std::uint8_t>((guid->Data4[0] & 0x3F) | 0x80);
    return S_OK;
}
