#include "platform/registry/RegistryStore.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <optional>
#include <string>
#include <utility>

#include "platform/core/Errors.h"
#include "platform/files/Descriptor.h"
#include "platform/files/Writing.h"
#include "platform/registry/RegistryFile.h"
#include "wnplatform/inspect.h"

namespace wnplatform {
namespace {

LSTATUS StatusFromErrno() { return static_cast<LSTATUS>(ErrorFromErrno(errno)); }

bool IsSameTime(const timespec& a, const timespec& b) noexcept {
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

// What tells one state of the file from another. Looked at through an open descriptor it also tells that the file was
// replaced, renamed or deleted: each of these changes its number of names or the time of its inode's last change.
struct FileState {
    dev_t device;
    ino_t node;
    nlink_t names;
    off_t size;
    timespec written;
    timespec changed;

    explicit FileState(const struct stat& file)
        : device(file.st_dev),
          node(file.st_ino),
          names(file.st_nlink),
          size(file.st_size),
          written(file.st_mtim),
          changed(file.st_ctim) {}
    bool operator==(const FileState& other) const noexcept {
        return device == other.device && node == other.node && names == other.names && size == other.size &&
               IsSameTime(written, other.written) && IsSameTime(changed, other.changed);
    }
};

bool ReadAll(int file, std::string& text) {
    char buffer[16384];
    for (;;) {
        const ssize_t count = read(file, buffer, sizeof buffer);
        if (count == 0) return true;
        if (count > 0) {
            text.append(buffer, static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            return false;
        }
    }
}

// A state of the file and what it says; an absent file has no state and says nothing. The file stays open with it, so
// that its inode cannot come back as another file and comparing inodes is enough to tell that nothing has changed.
template <class Tree>
struct Contents {
    Descriptor file;
    bool byName = false;  // another file may take its place without a trace on this one
    std::optional<FileState> state;
    std::string text;
    Tree tree;
};
using FreshContents = Contents<std::unique_ptr<RegistryTree>>;
using KnownContents = Contents<std::shared_ptr<const RegistryTree>>;

class Store {
public:
    RegistryView View() {
        RegistryView view{std::unique_lock(m_mutex), ERROR_SUCCESS, nullptr, 0};
        view.status = Refresh();
        view.tree = m_current.tree;
        view.version = m_version;
        return view;
    }

    std::unique_lock<std::mutex> Lock() { return std::unique_lock(m_mutex); }

    LSTATUS Change(const std::function<LSTATUS(RegistryTree&)>& change) {
        const std::unique_lock guard(m_mutex);
        const Descriptor turn(open(m_lockPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
        if (!turn) return StatusFromErrno();
        while (flock(turn.Get(), LOCK_EX) != 0) {
            if (errno != EINTR) return StatusFromErrno();
        }
        if (const LSTATUS status = Refresh(); status != ERROR_SUCCESS) return status;
        if (m_current.tree->damaged) return ERROR_BADDB;
        // A copy costs a fraction of reading the file again, and a registration makes hundreds of changes.
        FreshContents contents;
        contents.tree = std::make_unique<RegistryTree>(*m_current.tree);
        if (const LSTATUS status = change(*contents.tree); status != ERROR_SUCCESS) return status;
        contents.text = FormatRegistry(*contents.tree);
        return contents.text == m_current.text ? ERROR_SUCCESS : Write(contents);
    }

private:
    LSTATUS Refresh() {
        if (m_current.tree && IsCurrent()) return ERROR_SUCCESS;
        FreshContents contents;
        if (const LSTATUS status = Read(contents); status != ERROR_SUCCESS) return status;
        Adopt(contents);
        return ERROR_SUCCESS;
    }

    bool IsCurrent() const {
        struct stat now;
        // Every open and every query asks this, and a look at an open file costs half of one at a name.
        const bool direct = m_current.file && !m_current.byName;
        const int result = direct ? fstat(m_current.file.Get(), &now) : stat(m_path.c_str(), &now);
        if (result != 0) return !m_current.state && errno == ENOENT;
        return m_current.state && *m_current.state == FileState(now);
    }

    // False for a link, and for a file that was replaced since its state was taken.
    bool NameLeadsTo(const FileState& state) const {
        struct stat named;
        return lstat(m_path.c_str(), &named) == 0 && FileState(named) == state;
    }

    LSTATUS Read(FreshContents& contents) const {
        contents.file = Descriptor(open(m_path.c_str(), O_RDONLY | O_CLOEXEC));
        if (!contents.file) {
            if (errno != ENOENT) return StatusFromErrno();
            contents.tree = std::make_unique<RegistryTree>();
            return ERROR_SUCCESS;
        }
        // The state is taken first: whoever writes to the file while it is being read makes it a newer one.
        struct stat file;
        std::string& text = contents.text;
        if (fstat(contents.file.Get(), &file) != 0 || !ReadAll(contents.file.Get(), text)) return StatusFromErrno();
        contents.state.emplace(file);
        contents.byName = !NameLeadsTo(*contents.state);
        contents.tree = text.empty() ? std::make_unique<RegistryTree>() : ParseRegistry(text);
        return ERROR_SUCCESS;
    }

    // The new file takes the old one's place in one step: whoever is killed before leaves the old one.
    LSTATUS Write(FreshContents& contents) {
        const std::string fresh = m_path + ".new";
        const std::string& text = contents.text;
        contents.file = Descriptor(open(fresh.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
        struct stat written;
        if (!contents.file || WriteAll(contents.file.Get(), text.data(), text.size(), false) != text.size() ||
            fstat(contents.file.Get(), &written) != 0 || rename(fresh.c_str(), m_path.c_str()) != 0) {
            const LSTATUS status = StatusFromErrno();
            unlink(fresh.c_str());
            return status;
        }
        contents.state.emplace(written);
        // The new name is itself a change of the inode. Whoever writes to the file meanwhile changes more than this.
        if (fstat(contents.file.Get(), &written) == 0) contents.state->changed = written.st_ctim;
        contents.byName = !NameLeadsTo(*contents.state);
        Adopt(contents);
        return ERROR_SUCCESS;
    }

    void Adopt(FreshContents& contents) {
        m_current = {std::move(contents.file), contents.byName, contents.state, std::move(contents.text),
                     std::move(contents.tree)};
        ++m_version;
    }

    const std::string m_path = Home() + "/registry.reg";
    const std::string m_lockPath = Home() + "/registry.lock";
    std::mutex m_mutex;
    KnownContents m_current;
    std::uint64_t m_version = 0;
};

// Never destroyed: objects that end with the process may still ask.
Store& TheStore() {
    static Store* const store = new Store;
    return *store;
}

}  // namespace

RegistryView ViewRegistry() { return TheStore().View(); }

std::unique_lock<std::mutex> LockRegistry() { return TheStore().Lock(); }

LSTATUS ChangeRegistry(const std::function<LSTATUS(RegistryTree&)>& change) { return TheStore().Change(change); }

}  // namespace wnplatform
