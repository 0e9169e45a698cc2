#include "tools/wn/core/InputFile.h"

#include <algorithm>
#include <cstdio>

#include "tools/wn/core/CommandError.h"
#include "tools/wn/core/Paths.h"
#include "tools/wn/core/Texts.h"
#include "tools/wn/host/Host.h"

namespace wn {
namespace {

constexpr std::size_t kBlock = 64 * 1024;  // bytes

wncom::OwnedHandle Open(const std::string& path) {
    wncom::OwnedHandle file(CreateFileW(FromUtf8(path, "The path").get(), GENERIC_READ,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
    if (file) return file;
    const DWORD error = GetLastError();
    if (IsDirectory(path)) throw WrongInput(path + " is a directory: give the path of a file");
    throw WrongInput("Cannot open " + path + ": " + ErrorText(error));
}

std::optional<std::uint64_t> SizeOf(HANDLE file) {
    DWORD high = 0;
    SetLastError(NO_ERROR);
    const DWORD low = GetFileSize(file, &high);
    if (low == INVALID_FILE_SIZE && GetLastError() != NO_ERROR) return std::nullopt;
    return (std::uint64_t{high} << 32) | low;
}

}  // namespace

InputFile::InputFile(const std::string& path) : m_name(path) {
    if (path == "-") {
        m_name = "standard input";
        ReadStandardInputAsBytes();
    } else {
        m_file = Open(path);
        m_size = SizeOf(m_file.get());
    }
    if (!m_size) ReadAhead();
}

void InputFile::ReadAhead() {
    m_ahead.resize(kBlock);
    m_ahead.resize(ReadSource(m_ahead.data(), m_ahead.size()));
    if (m_ahead.empty()) throw WrongInput("Nothing came from " + m_name);
}

std::size_t InputFile::ReadSource(void* buffer, std::size_t count) {
    if (!m_file) {
        const std::size_t read = std::fread(buffer, 1, count, stdin);
        if (read == 0 && std::ferror(stdin) != 0) throw CommandError("Cannot read " + m_name);
        return read;
    }
    DWORD read = 0;
    const DWORD wanted = static_cast<DWORD>(std::min<std::size_t>(count, 1U << 30));
    if (!ReadFile(m_file.get(), buffer, wanted, &read, nullptr)) {
        throw CommandError("Cannot read " + m_name + ": " + ErrorText(GetLastError()));
    }
    return read;
}

std::size_t InputFile::Read(void* buffer, std::size_t count) {
    if (m_ahead.empty()) return ReadSource(buffer, count);
    const std::size_t given = m_ahead.copy(static_cast<char*>(buffer), count);
    m_ahead.erase(0, given);
    return given;
}

std::string InputFile::ReadAll(std::uint64_t limit) {
    const auto refuse = [&] { throw WrongInput(m_name + " is larger than " + std::to_string(limit >> 20) + " MB"); };
    if (m_size.value_or(0) > limit) refuse();
    std::string text;
    for (std::size_t done = 0;; done = text.size()) {
        text.resize(done + std::max<std::size_t>(kBlock, done / 2));
        text.resize(done + Read(text.data() + done, text.size() - done));
        if (text.size() == done) return text;
        if (text.size() > limit) refuse();
    }
}

}  // namespace wn
