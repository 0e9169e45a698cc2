#include "platform/registry/RegistryFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/core/Errors.h"
#include "platform/core/Trust.h"
#include "platform/files/Reading.h"
#include "platform/files/Writing.h"

namespace wnplatform {
namespace {

LSTATUS StatusFromErrno() noexcept { return static_cast<LSTATUS>(ErrorFromErrno(errno)); }

bool IsSameTime(const timespec& a, const timespec& b) noexcept {
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

// Where a change begins that is not finished: at the text's one zero, with a key's line behind it.
std::size_t FindUnfinished(std::string_view text) noexcept {
    const std::size_t zero = text.find('\0');
    if (zero == std::string_view::npos || text.find('\0', zero + 1) != std::string_view::npos) return text.size();
    return text.substr(zero + 1).starts_with('[') ? zero : text.size();
}

}  // namespace

bool FileState::operator==(const FileState& other) const noexcept {
    return device == other.device && node == other.node && names == other.names && size == other.size &&
           IsSameTime(written, other.written) && IsSameTime(changed, other.changed);
}

bool RegistryFile::IsCurrent() const noexcept {
    struct stat now;
    // Every open and every query asks this, and a look at an open file costs half of one at a name.
    const bool direct = m_file && !m_byName;
    const int result = direct ? fstat(m_file.Get(), &now) : stat(m_path.c_str(), &now);
    if (result != 0) return !m_file && errno == ENOENT;
    if (!m_state || !(*m_state == FileState(now))) return false;
    if (!m_unfinished) return true;
    // The clock of the file system is coarse: the last byte of the change may come without a trace in the state.
    char first = 0;
    return pread(m_file.Get(), &first, 1, static_cast<off_t>(m_text.size())) == 1 && first == '\0';
}

// False for a link, and for a file that was replaced since its state was taken.
bool RegistryFile::NameLeadsHere() const noexcept {
    struct stat named;
    return lstat(m_path.c_str(), &named) == 0 && FileState(named) == *m_state;
}

LSTATUS RegistryFile::Read() {
    m_state.reset();
    m_text.clear();
    m_unfinished = false;
    m_writable = true;
    m_file = Descriptor(open(m_path.c_str(), O_RDWR | O_CLOEXEC));
    if (!m_file && (errno == EACCES || errno == EPERM || errno == EROFS)) {
        m_writable = false;
        m_file = Descriptor(open(m_path.c_str(), O_RDONLY | O_CLOEXEC));
    }
    if (!m_file) return errno == ENOENT ? ERROR_SUCCESS : StatusFromErrno();
    // The state is taken first: whoever writes to the file while it is being read makes it a newer one.
    struct stat file;
    if (fstat(m_file.Get(), &file) != 0 || !ReadToEnd(m_file.Get(), m_text)) return StatusFromErrno();
    const std::size_t end = FindUnfinished(m_text);
    m_unfinished = end != m_text.size();
    m_text.resize(end);
    m_state.emplace(file);
    m_byName = !NameLeadsHere();
    return ERROR_SUCCESS;
}

LSTATUS RegistryFile::WriteBehind(std::string_view lines) noexcept {
    const auto end = static_cast<off_t>(m_text.size());
    if (m_unfinished && ftruncate(m_file.Get(), end) != 0) return StatusFromErrno();
    if (WriteAllAt(m_file.Get(), lines.data(), lines.size(), end + 1) == lines.size() &&
        WriteAllAt(m_file.Get(), "\n", 1, end) == 1) {
        return ERROR_SUCCESS;
    }
    const LSTATUS status = StatusFromErrno();
    // Where this fails too, the zero keeps readers from it.
    if (ftruncate(m_file.Get(), end) != 0) return status;
    return status;
}

LSTATUS RegistryFile::Append(std::string_view lines) {
    // Whatever fails from here on, the next look reads the file.
    m_state.reset();
    m_text.reserve(m_text.size() + 1 + lines.size());
    if (const LSTATUS status = WriteBehind(lines); status != ERROR_SUCCESS) return status;
    m_unfinished = false;
    m_text.append("\n").append(lines);
    struct stat written;
    // A size that is not the expected one means that somebody writes without the lock.
    if (fstat(m_file.Get(), &written) == 0 && written.st_size == static_cast<off_t>(m_text.size())) {
        m_state.emplace(written);
    }
    return ERROR_SUCCESS;
}

LSTATUS RegistryFile::Replace(std::string text) {
    const std::string fresh = m_path + ".new";
    unlink(fresh.c_str());  // of a writer that was killed
    struct stat before;
    const bool replaces = m_file && fstat(m_file.Get(), &before) == 0;
    Descriptor file(open(fresh.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, replaces ? 0600 : 0666));
    const auto setAccess = [&] {
        return replaces ? KeepAccess(file.Get(), before) : ShareWithHome(file.Get(), Others::Read);
    };
    struct stat written;
    if (!file || !setAccess() || WriteAll(file.Get(), text.data(), text.size(), false) != text.size() ||
        fstat(file.Get(), &written) != 0 || rename(fresh.c_str(), m_path.c_str()) != 0) {
        const LSTATUS status = StatusFromErrno();
        unlink(fresh.c_str());
        return status;
    }
    m_file = std::move(file);
    m_writable = true;
    m_unfinished = false;
    m_text = std::move(text);
    m_state.emplace(written);
    // The new name is itself a change of the inode. Whoever writes to the file meanwhile changes more than this.
    if (fstat(m_file.Get(), &written) == 0) m_state->changed = written.st_ctim;
    m_byName = !NameLeadsHere();
    return ERROR_SUCCESS;
}

}  // namespace wnplatform
