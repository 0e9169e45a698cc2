// A file that the user named, read through the layer so that every form of path works.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

namespace wn {

// Paths are in UTF-8 and may hold any character. Failures throw CommandError with the path.
class InputFile {
public:
    explicit InputFile(const std::string& path);
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;
    ~InputFile() { CloseHandle(m_file); }

    std::uint64_t size() const { return m_size; }
    // Up to count bytes from the present place; 0 at the end.
    std::size_t Read(void* buffer, std::size_t count);
    // The whole file, refused above a limit in bytes.
    std::string ReadAll(std::uint64_t limit);

private:
    std::string m_path;
    HANDLE m_file;
    std::uint64_t m_size = 0;
};

}  // namespace wn
