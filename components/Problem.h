// How the components' inner parts report what goes wrong.
#pragma once

#include <windows.h>

#include <stdexcept>
#include <string>

namespace wncom::components {

// A status for the caller and a sentence for the person who can put it right.
class Problem : public std::runtime_error {
public:
    Problem(HRESULT status, const std::string& what) : std::runtime_error(what), m_status(status) {}
    HRESULT status() const noexcept { return m_status; }

private:
    HRESULT m_status;
};

}  // namespace wncom::components
