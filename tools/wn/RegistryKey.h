// One key of the registry, by its path under HKEY_LOCAL_MACHINE.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

namespace wn {

// Texts are UTF-8 here and REG_SZ in the narrow code page there. Failures throw CommandError with the key's name; an
// absent key or value is no failure of a read or a removal.
class RegistryKey {
public:
    explicit RegistryKey(std::string path) : m_path(std::move(path)) {}

    // An empty name is the default value. Empty when absent; a value of another type counts as absent.
    std::optional<std::string> Read(const std::string& name) const;
    // A REG_DWORD; a value of another type counts as absent.
    std::optional<DWORD> ReadNumber(const std::string& name) const;
    bool Exists() const;
    // The names of the values that are texts, the default value's left out.
    std::vector<std::string> Names() const;
    void Write(const std::string& name, const std::string& value) const;
    // True when there was one.
    bool Remove(const std::string& name) const;

    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

// Where the library finds its settings.
inline const RegistryKey kLoggingKey("SOFTWARE\\Quillbeck\\QBNorvel\\Logging");
inline const RegistryKey kPortMapKey("SOFTWARE\\Quillbeck\\QBNorvel\\PortMap");
inline const RegistryKey kCacheKey("SOFTWARE\\Quillbeck\\QBNorvel\\XMLCache");
inline const RegistryKey kHttpTransportKey("SOFTWARE\\Quillbeck\\QBNorvel\\HttpTransport");
inline const RegistryKey kForceKey("SOFTWARE\\Quillbeck\\QBNorvel\\ForceToOutOfProc");
inline const RegistryKey kProductKey("SOFTWARE\\Quillbeck\\QBNorvel");
inline const RegistryKey kCodePageKey("SYSTEM\\CurrentControlSet\\Control\\Nls\\CodePage");

}  // namespace wn
