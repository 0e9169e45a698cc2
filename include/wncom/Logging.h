// The one diagnostic channel: levelled lines to a log file that all processes share, to standard output or to the
// debugger output, as the registry configures.
//
// State is one per module that links the logger. Every operation may be called from any thread, reports nothing to
// its caller and never throws.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <type_traits>

#include "wncom/CString.h"

namespace wncom {

enum class LogDestination : std::int32_t { None = 0, Console = 1, Debugger = 2, File = 4, SizedFile = 8 };

// A byte that threads read without order between them.
class RelaxedByte {
public:
    constexpr RelaxedByte() noexcept = default;
    operator std::uint8_t() const noexcept { return m_value.load(std::memory_order_relaxed); }
    RelaxedByte& operator=(std::uint8_t value) noexcept {
        m_value.store(value, std::memory_order_relaxed);
        return *this;
    }

private:
    std::atomic<std::uint8_t> m_value{0};
};

// A message is written when its level is at most this one: 0 at load and after the last end. Callers test it before
// they build costly arguments; WNCOM_LOG does so for them.
extern RelaxedByte LogLevel;

// One argument of a message, captured with its type, so that a conversion and its argument cannot disagree.
class LogArgument {
public:
    enum class Kind : std::uint8_t { Signed, Unsigned, NarrowString, WideString, WideCharacter, Pointer };

    template <class T, std::enable_if_t<std::is_integral_v<T> || std::is_enum_v<T>, int> = 0>
    LogArgument(T value) noexcept
        : kind(std::is_same_v<T, WCHAR>                   ? Kind::WideCharacter
               : std::is_signed_v<T> || std::is_enum_v<T> ? Kind::Signed
                                                          : Kind::Unsigned),
          bytes(sizeof(T)),
          number(static_cast<std::uint64_t>(static_cast<std::int64_t>(value))) {}
    LogArgument(const char* text) noexcept : kind(Kind::NarrowString), bytes(sizeof(text)), narrow(text) {}
    LogArgument(const WCHAR* text) noexcept : kind(Kind::WideString), bytes(sizeof(text)), wide(text) {}
    LogArgument(const CString& text) noexcept : LogArgument(text.c_str()) {}
    LogArgument(const void* pointer) noexcept
        : kind(Kind::Pointer), bytes(sizeof(pointer)), number(reinterpret_cast<std::uintptr_t>(pointer)) {}

    Kind kind;
    std::uint8_t bytes;  // width of the captured value
    union {
        std::uint64_t number;  // sign-extended
        const char* narrow;    // may be null; prints as (null)
        const WCHAR* wide;     // UTF-16, may be null; prints as (null)
    };
};

// Reads the registry's configuration of a component ("CWendrel", "CWendrelParent", "JobControlFactory") and opens
// the destination, or takes a reference to the one that is open. Returns the configured level, 0 when no
// configuration was found. tookReference, when given, tells whether this start holds a reference that EndLogging
// must give back.
std::uint8_t StartLogging(const char* component, bool* tookReference = nullptr) noexcept;
// Gives one reference back; the last one closes the destination.
void EndLogging() noexcept;

// A component's own start and end: its end gives back a reference only when its start took one, so a component that
// was refused does not close the log under others.
class LogReference {
public:
    LogReference() noexcept = default;
    LogReference(const LogReference&) = delete;
    LogReference& operator=(const LogReference&) = delete;
    ~LogReference() { End(); }

    void Start(const char* component) noexcept {
        End();
        StartLogging(component, &m_taken);
    }
    void End() noexcept {
        if (m_taken) EndLogging();
        m_taken = false;
    }

private:
    bool m_taken = false;
};

// Writes one line, whatever its arguments' number; extra ones are ignored and missing ones print as (missing).
// Conversions: d i u x X o c p s S C and %%, with flags, width, precision and the length modifiers h l ll z I64; "%s"
// takes narrow text, "%S" UTF-16 text (written as UTF-8, its precision in bytes), "%C" a UTF-16 character. Any other
// conversion, and one with "*", is copied as text; an argument that does not fit its conversion is written as what it
// is. A line holds at most 1152 bytes: what does not fit is cut, its end is not.
void LogMessage(std::uint8_t level, const char* format, const LogArgument* arguments, std::size_t count) noexcept;

template <class... Arguments>
void Log(std::uint8_t level, const char* format, const Arguments&... arguments) noexcept {
    if (level > LogLevel) return;
    if constexpr (sizeof...(arguments) == 0) {
        LogMessage(level, format, nullptr, 0);
    } else {
        const LogArgument captured[] = {LogArgument(arguments)...};
        LogMessage(level, format, captured, sizeof...(arguments));
    }
}

// Log, with its arguments evaluated only when the level is written.
#define WNCOM_LOG(level, ...)                                                 \
    do {                                                                      \
        if ((level) <= ::wncom::LogLevel) ::wncom::Log((level), __VA_ARGS__); \
    } while (false)

// Writes a line with the count of some bytes that were received or sent and the first of them in hexadecimal.
void LogBytes(std::uint8_t level, bool received, const void* bytes, std::uint32_t count) noexcept;

// The number of references; level and destination are stored only when it is not 0.
LONG QueryLogging(std::uint8_t* level, LogDestination* destination) noexcept;

}  // namespace wncom
