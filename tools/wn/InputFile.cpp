#include "tools/wn/InputFile.h"

#include <algorithm>

#include "tools/wn/Command.h"
#include "tools/wn/Paths.h"
#include "tools/wn/Texts.h"

namespace wn {

InputFile::InputFile(const std::string& path)
    : m_path(path),
      m_file(CreateFileW(FromUtf8(path, "The path").get(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                         OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)) {
    if (m_file == INVALID_HANDLE_VALUE) {
        const DWORD error = GetLastError();
        if (IsDirectory(path)) throw CommandError(path + " is a directory: give the path of a file");
        throw CommandError("Cannot open " + path + ": " + ErrorText(error));
    }
    DWORD high = 0;
    const DWORD low = GetFileSize(m_file, &high);
    m_size = (static_cast<std::uint64_t>(high) << 32) | low;
}

std::size_t InputFile::Read(void* buffer, std::size_t count) {
    DWORD read = 0;
    const DWORD wanted = static_cast<DWORD>(std::min<std::size_t>(count, 1U << 30));
    if (!ReadFile(m_file, buffer, wanted, &read, nullptr)) {
        throw CommandError("Cannot read " + m_path + ": " + ErrorText(GetLastError()));
    }
    return read;
}

std::string InputFile::ReadAll(std::uint64_t limit) {
    if (m_size > limit) throw CommandError(m_path + " is larger than " + std::to_string(limit >> 20) + " MB");
    std::string text(static_cast<std::size_t>(m_size), '\0');
    std::size_t done = 0;
    while (done < text.size()) {
        const std::size_t read = Read(text.data() + done, text.size() - done);
        if (read == 0) break;
        done += read;
    }
    text.resize(done);
    return text;
}

}  // namespace wn
