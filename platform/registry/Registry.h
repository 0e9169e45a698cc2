// What the layer's other facilities ask of the registry.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/registry/RegistryStore.h"
#include "winnls.h"
#include "winreg.h"

namespace wnplatform {

// The text value of a key below a root, path and text in UTF-8; empty when there is none of that kind.
std::optional<std::string> ReadRegistryText(HKEY root, std::string_view path, std::string_view valueName);

// A number that is another one whenever the registry has changed.
std::uint64_t RegistryVersion();

// A key's or value's name in UTF-8, without making a copy of what is the same in both.
class RegistryName {
public:
    // Null is an empty name.
    explicit RegistryName(LPCSTR narrow);
    RegistryName(const RegistryName&) = delete;
    RegistryName& operator=(const RegistryName&) = delete;

    std::string_view Text() const noexcept { return m_text; }

private:
    std::string m_converted;
    std::string_view m_text;
};

// Runs the body of a registry function, which answers a status.
template <class Body>
LSTATUS RegistryCall(const Body& body) noexcept {
    try {
        // The code page is itself a value of the registry: it must be known before the registry's lock is taken.
        GetACP();
        return body();
    } catch (...) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
}

}  // namespace wnplatform
