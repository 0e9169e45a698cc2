// The owner of one BSTR.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <string_view>
#include <utility>

namespace wncom {

// Owns one BSTR, or null, and frees it with SysFreeString.
class Bstr {
public:
    Bstr() noexcept = default;
    // A copy of a terminated text; null gives null, and so does running out of memory.
    explicit Bstr(const OLECHAR* text) noexcept : m_text(SysAllocString(text)) {}
    explicit Bstr(std::basic_string_view<OLECHAR> text) noexcept
        : m_text(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {}
    Bstr(Bstr&& other) noexcept : m_text(other.detach()) {}
    Bstr& operator=(Bstr&& other) noexcept {
        if (this != &other) attach(other.detach());
        return *this;
    }
    ~Bstr() { SysFreeString(m_text); }

    BSTR get() const noexcept { return m_text; }
    explicit operator bool() const noexcept { return m_text != nullptr; }
    // In UTF-16 units; 0 for null.
    UINT length() const noexcept { return SysStringLen(m_text); }
    bool empty() const noexcept { return length() == 0; }
    std::basic_string_view<OLECHAR> view() const noexcept {
        return m_text ? std::basic_string_view<OLECHAR>(m_text, length()) : std::basic_string_view<OLECHAR>();
    }

    // For an out-parameter: frees what is held and gives the place for a new text.
    BSTR* put() noexcept {
        attach(nullptr);
        return &m_text;
    }
    void attach(BSTR text) noexcept { SysFreeString(std::exchange(m_text, text)); }
    BSTR detach() noexcept { return std::exchange(m_text, nullptr); }

private:
    BSTR m_text = nullptr;
};

}  // namespace wncom
