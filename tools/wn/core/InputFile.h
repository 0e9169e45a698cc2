// What the user gives a command to read: a file, a pipe, or standard input.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>

#include "common/Owned.h"

namespace wn {

// Paths are in UTF-8 and may hold any character; "-" is standard input. Failures throw CommandError with the path, at
// opening WrongInput.
class InputFile {
public:
    // Waits for the first bytes of a pipe, and refuses one that ends without any: what should have written to it has
    // failed.
    explicit InputFile(const std::string& path);
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    // As messages call it.
    const std::string& name() const { return m_name; }
    // In bytes; nothing for a pipe, whose end is known when it comes.
    std::optional<std::uint64_t> size() const { return m_size; }
    // Up to count bytes from the present place; 0 at the end.
    std::size_t Read(void* buffer, std::size_t count);
    // The rest of it, refused above a limit in bytes.
    std::string ReadAll(std::uint64_t limit);

private:
    std::size_t ReadSource(void* buffer, std::size_t count);
    void ReadAhead();

    std::string m_name;
    wncom::OwnedHandle m_file;  // none: standard input
    std::optional<std::uint64_t> m_size;
    std::string m_ahead;  // read already, not handed out yet
};

}  // namespace wn
