// The text of one log line.
#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>

namespace wncom {

// A text in a fixed array. What does not fit is dropped together with everything after it, but there is always room
// for the line's end.
class LogLine {
public:
    static constexpr std::size_t kBufferBytes = 1152;
    static constexpr std::size_t kTextBytes = kBufferBytes - sizeof("\r\n");

    // In bytes.
    std::size_t length() const noexcept { return m_length; }
    bool full() const noexcept { return m_full; }
    std::size_t room() const noexcept { return m_full ? 0 : kTextBytes - m_length; }
    std::string_view view(std::size_t from = 0) const noexcept { return {m_text + from, m_length - from}; }

    void Append(std::string_view text) noexcept {
        const std::size_t bytes = Fit(text.size());
        std::memcpy(m_text + m_length, text.data(), bytes);
        m_length += bytes;
    }
    void Append(std::size_t count, char filling) noexcept {
        const std::size_t bytes = Fit(count);
        std::memset(m_text + m_length, filling, bytes);
        m_length += bytes;
    }
    // Appends the whole text or, when there is no room for it, nothing.
    void AppendWhole(std::string_view text) noexcept {
        if (text.size() > room()) m_full = true;
        Append(text);
    }
    // Brings what was appended since a position to a width, with spaces before or behind it.
    void Pad(std::size_t from, std::size_t width, bool behind) noexcept {
        const std::size_t written = m_length - from;
        if (m_full || written >= width) return;
        Append(width - written, ' ');
        if (behind) return;
        const std::size_t spaces = m_length - from - written;
        std::memmove(m_text + from + spaces, m_text + from, written);
        std::memset(m_text + from, ' ', spaces);
    }
    // Ends the line with "\r\n" unless it ends with a line feed, and returns it with a terminator behind it. Called
    // once, last.
    const char* End() noexcept {
        if (m_length == 0 || m_text[m_length - 1] != '\n') {
            m_text[m_length++] = '\r';
            m_text[m_length++] = '\n';
        }
        m_text[m_length] = '\0';
        return m_text;
    }

private:
    std::size_t Fit(std::size_t wanted) noexcept {
        const std::size_t left = room();
        if (wanted <= left) return wanted;
        m_full = true;
        return left;
    }

    std::size_t m_length = 0;
    bool m_full = false;
    char m_text[kBufferBytes];
};

}  // namespace wncom
