// The narrow string value in which texts cross the remote interface.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstring>
#include <new>
#include <string_view>
#include <utility>

namespace wncom {

// A reference-counted string of bytes with an explicit length, always terminated, passed by value. Copies share the
// bytes until one of them is changed, from any thread; one value belongs to one thread at a time. The bytes have no
// encoding of their own: what each operation expects is said there. Making or growing one throws std::bad_alloc when
// memory runs out.
class CString {
public:
    CString() noexcept = default;
    // Null gives an empty value.
    CString(const char* text) : CString(text ? std::string_view(text) : std::string_view()) {}
    explicit CString(std::string_view text) : m_data(text.empty() ? nullptr : Data::New(text.size())) {
        if (m_data) std::memcpy(m_data->Text(), text.data(), text.size());
    }
    // From UTF-16 through the narrow code page of the calling thread; characters that it lacks become its default
    // character. Null gives an empty value.
    explicit CString(const WCHAR* text) {
        const int units = text ? static_cast<int>(std::char_traits<WCHAR>::length(text)) : 0;
        if (units == 0) return;
        const int bytes = WideCharToMultiByte(CP_THREAD_ACP, 0, text, units, nullptr, 0, nullptr, nullptr);
        if (bytes <= 0) return;
        m_data = Data::New(static_cast<std::size_t>(bytes));
        WideCharToMultiByte(CP_THREAD_ACP, 0, text, units, m_data->Text(), bytes, nullptr, nullptr);
    }
    CString(const CString& other) noexcept : m_data(other.m_data) {
        if (m_data) m_data->references.fetch_add(1, std::memory_order_relaxed);
    }
    CString(CString&& other) noexcept : m_data(std::exchange(other.m_data, nullptr)) {}
    CString& operator=(CString other) noexcept {
        std::swap(m_data, other.m_data);
        return *this;
    }
    ~CString() {
        if (m_data && m_data->references.fetch_sub(1, std::memory_order_acq_rel) == 1) Data::Delete(m_data);
    }

    // Never null; valid until the value is changed or destroyed.
    const char* c_str() const noexcept { return m_data ? m_data->Text() : ""; }
    // In bytes, without the terminator.
    std::size_t length() const noexcept { return m_data ? m_data->length : 0; }
    bool empty() const noexcept { return length() == 0; }
    operator std::string_view() const noexcept { return {c_str(), length()}; }

    CString& operator+=(std::string_view text) {
        if (text.empty()) return *this;
        CString grown;
        grown.m_data = Data::New(length() + text.size());
        std::memcpy(grown.m_data->Text(), c_str(), length());
        std::memcpy(grown.m_data->Text() + length(), text.data(), text.size());
        std::swap(m_data, grown.m_data);
        return *this;
    }

    friend bool operator==(const CString& a, const CString& b) noexcept {
        return std::string_view(a) == std::string_view(b);
    }

private:
    struct Data {
        std::atomic<LONG> references{1};
        std::size_t length = 0;

        char* Text() noexcept { return reinterpret_cast<char*>(this + 1); }
        static Data* New(std::size_t length) {
            void* memory = ::operator new(sizeof(Data) + length + 1);
            Data* data = new (memory) Data;
            data->length = length;
            data->Text()[length] = '\0';
            return data;
        }
        static void Delete(Data* data) noexcept {
            data->~Data();
            ::operator delete(data);
        }
    };

    Data* m_data = nullptr;  // null for an empty value
};

}  // namespace wncom
