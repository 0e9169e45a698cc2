// The exception of the common layer.
#pragma once

#include <windows.h>

#include <stdexcept>

namespace wncom {

// A message and a status. Copies share the message and never throw.
class CPException : public std::runtime_error {
public:
    // The message is copied; null gives an empty one.
    CPException(const char* message, HRESULT code) : std::runtime_error(message ? message : ""), m_code(code) {}

    virtual HRESULT GetCode() const noexcept { return m_code; }

private:
    HRESULT m_code;
};

}  // namespace wncom
