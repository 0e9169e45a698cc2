// The file that holds the registry. A change is appended to it; now and then it is written anew.
#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>
#include <string_view>

#include "platform/files/Descriptor.h"
#include "winerror.h"

namespace wnplatform {

// What tells one state of a file from another. Looked at through an open descriptor it also tells that the file was
// replaced, renamed or deleted: each of these changes its number of names or the time of its inode's last change.
struct FileState {
    dev_t device;
    ino_t node;
    nlink_t names;
    off_t size;
    timespec written;
    timespec changed;

    explicit FileState(const struct stat& file) noexcept
        : device(file.st_dev),
          node(file.st_ino),
          names(file.st_nlink),
          size(file.st_size),
          written(file.st_mtim),
          changed(file.st_ctim) {}
    bool operator==(const FileState& other) const noexcept;
};

// Readers take no lock, so a change must not be seen before all of it is there: its first byte, an empty line's end,
// is written last. Until then the file holds a zero in its place, and what a killed writer leaves behind a zero is
// not part of the text; the next writer cuts it off.
class RegistryFile {
public:
    explicit RegistryFile(std::string path) : m_path(std::move(path)) {}

    // True while the file is as it was read or written last.
    bool IsCurrent() const noexcept;
    // The text as it was then; empty when there was no file.
    const std::string& Text() const noexcept { return m_text; }

    LSTATUS Read();
    // Adds whole lines to the text. Nothing of them is seen when it fails. The caller keeps other writers away, and
    // has seen that the file is current.
    LSTATUS Append(std::string_view lines);
    // Puts a new text in the place of the old one, in one step.
    LSTATUS Replace(std::string text);
    // False when there is no file yet, or when it may only be replaced.
    bool MayAppend() const noexcept { return m_writable && !m_text.empty(); }

private:
    bool NameLeadsHere() const noexcept;
    LSTATUS WriteBehind(std::string_view lines) noexcept;

    const std::string m_path;
    // It stays open, so that its inode cannot come back as another file and comparing inodes is enough to tell that
    // nothing has changed.
    Descriptor m_file;
    bool m_writable = false;
    bool m_byName = false;      // another file may take its place without a trace on this one
    bool m_unfinished = false;  // a zero and what is behind it follow on the text
    std::optional<FileState> m_state;
    std::string m_text;
};

}  // namespace wnplatform
