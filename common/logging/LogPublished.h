// A small value that is replaced now and then while many threads read it.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstring>
#include <type_traits>

namespace wncom {

// Readers take no lock: they copy the value word by word and notice when it was replaced meanwhile. Any thread may
// call either operation.
template <class T>
class Published {
    static_assert(std::is_trivially_copyable_v<T> && sizeof(T) % sizeof(std::size_t) == 0);

public:
    constexpr Published() noexcept = default;

    // False, and the value untouched, when it is being replaced.
    bool TryRead(T& value) const noexcept {
        const std::size_t version = m_version.load(std::memory_order_acquire);
        if (version % 2 != 0) return false;
        std::size_t words[kWords];
        // Each word is acquired: a reader that sees a new word also sees that the version has changed.
        for (std::size_t i = 0; i != kWords; ++i) words[i] = m_words[i].load(std::memory_order_acquire);
        if (m_version.load(std::memory_order_relaxed) != version) return false;
        std::memcpy(&value, words, sizeof(T));
        return true;
    }

    // False, and nothing replaced, while another thread replaces it.
    bool TryWrite(const T& value) noexcept {
        std::size_t version = m_version.load(std::memory_order_relaxed);
        if (version % 2 != 0) return false;
        if (!m_version.compare_exchange_strong(version, version + 1, std::memory_order_acquire)) return false;
        std::size_t words[kWords];
        std::memcpy(words, &value, sizeof(T));
        for (std::size_t i = 0; i != kWords; ++i) m_words[i].store(words[i], std::memory_order_release);
        m_version.store(version + 2, std::memory_order_release);
        return true;
    }

private:
    static constexpr std::size_t kWords = sizeof(T) / sizeof(std::size_t);

    std::atomic<std::size_t> m_version{0};  // odd while the value is being replaced
    std::atomic<std::size_t> m_words[kWords]{};
};

}  // namespace wncom
