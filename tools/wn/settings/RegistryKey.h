// One key of the registry, in the view that wn works on.
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
    // A path under HKEY_LOCAL_MACHINE, or under HKEY_CLASSES_ROOT, which shows what is registered for the user too.
    explicit RegistryKey(std::string path, HKEY root = HKEY_LOCAL_MACHINE) : m_root(root), m_path(std::move(path)) {}

    // An empty name is the default value. Empty when absent; a value of another type counts as absent.
    std::optional<std::string> Read(const std::string& name) const;
    // A REG_DWORD; a value of another type counts as absent.
    std::optional<DWORD> ReadNumber(const std::string& name) const;
    bool Exists() const;
    // Whether there is a value of this name, of whatever type.
    bool Holds(const std::string& name) const;
    // The names of the values that are texts, the default value's left out.
    std::vector<std::string> Names() const;
    void Write(const std::string& name, const std::string& value) const;
    // True when there was one.
    bool Remove(const std::string& name) const;

    // "HKEY_LOCAL_MACHINE\PATH", and the same with ", value NAME" for one of its values.
    std::string place() const;
    std::string place(const std::string& name) const;

private:
    HKEY m_root;
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
