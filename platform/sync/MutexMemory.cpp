#include "platform/sync/MutexMemory.h"

#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <map>
#include <mutex>

#include "platform/core/Errors.h"
#include "platform/core/HomeLock.h"
#include "platform/sync/MutexFiles.h"

namespace wnplatform {

struct MutexPage {
    std::uint64_t mark;  // written last; another one is of another build, or of no mutex
    std::array<char, MAX_PATH> name;
    SharedMutex mutex;
};

void UnmapPage::operator()(MutexPage* page) const noexcept { munmap(page, sizeof(MutexPage)); }

namespace {

constexpr std::uint64_t kMark = 0x0158'5455'4D4E'5700 + sizeof(MutexPage);

// The named mutexes that this process has open.
struct OpenMutexes {
    std::mutex lock;  // held with the home's lock, and taken before it
    std::map<std::string, std::weak_ptr<MutexMemory>> byName;
};

// Never destroyed: other modules may close handles while the process ends.
OpenMutexes& TheOpenMutexes() {
    static OpenMutexes& mutexes = *new OpenMutexes;
    return mutexes;
}

std::nullptr_t Refuse(DWORD code) noexcept {
    SetLastError(code);
    return nullptr;
}

MappedPage Map(int file) noexcept {
    const int flags = MAP_SHARED | (file < 0 ? MAP_ANONYMOUS : 0);
    void* page = mmap(nullptr, sizeof(MutexPage), PROT_READ | PROT_WRITE, flags, file, 0);
    return MappedPage(page == MAP_FAILED ? nullptr : static_cast<MutexPage*>(page));
}

bool IsMutexOf(int file, const std::string& name) noexcept {
    struct stat status;
    if (fstat(file, &status) != 0 || status.st_size != sizeof(MutexPage)) return false;
    const MappedPage page = Map(file);
    return page && page->mark == kMark && std::strncmp(page->name.data(), name.c_str(), page->name.size()) == 0;
}

// The mutex as another process holds it open. A file that nobody holds open was left behind by a process that was
// killed, and is taken away.
std::shared_ptr<MutexMemory> Join(const std::string& name, const std::string& path) {
    Descriptor file = OpenMutexFile(path);
    if (!file) return Refuse(ErrorFromErrno(errno));
    if (LockMutexFile(file, LOCK_EX)) {
        unlink(path.c_str());
        return Refuse(ERROR_FILE_NOT_FOUND);
    }
    // Two long names with one file: as on Windows where the name is an object's of another sort.
    if (!LockMutexFile(file, LOCK_SH) || !IsMutexOf(file.Get(), name)) return Refuse(ERROR_INVALID_HANDLE);
    MappedPage page = Map(file.Get());
    if (!page) return Refuse(ErrorFromErrno(errno));
    return std::make_shared<MutexMemory>(std::move(page), std::move(file), path);
}

std::shared_ptr<MutexMemory> Make(const std::string& name, const std::string& path, bool own) {
    Descriptor file = MakeMutexFile(path, sizeof(MutexPage));
    if (!file) return Refuse(ErrorFromErrno(errno));
    MappedPage page = LockMutexFile(file, LOCK_SH) ? Map(file.Get()) : nullptr;
    if (!page || page->mutex.Make() != 0) {
        unlink(path.c_str());
        return Refuse(ERROR_NOT_ENOUGH_MEMORY);
    }
    std::memcpy(page->name.data(), name.c_str(), name.size() + 1);
    page->mark = kMark;
    if (own) page->mutex.Wait(0);
    return std::make_shared<MutexMemory>(std::move(page), std::move(file), path);
}

// The mutex that this process has open already.
std::shared_ptr<MutexMemory> Known(const OpenMutexes& open, const std::string& name) {
    const auto found = open.byName.find(name);
    std::shared_ptr<MutexMemory> memory = found == open.byName.end() ? nullptr : found->second.lock();
    return memory && memory->IsOfThisProcess() ? memory : nullptr;
}

void Remember(OpenMutexes& open, const std::string& name, const std::shared_ptr<MutexMemory>& memory) {
    std::erase_if(open.byName, [](const auto& entry) { return entry.second.expired(); });
    open.byName[name] = memory;
}

}  // namespace

std::shared_ptr<MutexMemory> MutexMemory::MakePrivate() {
    MappedPage page = Map(-1);
    if (!page || page->mutex.Make() != 0) return Refuse(ERROR_NOT_ENOUGH_MEMORY);
    return std::make_shared<MutexMemory>(std::move(page), Descriptor(), std::string());
}

std::shared_ptr<MutexMemory> MutexMemory::Open(const std::string& name) {
    OpenMutexes& open = TheOpenMutexes();
    const std::scoped_lock guard(open.lock);
    std::shared_ptr<MutexMemory> memory = Known(open, name);
    if (memory) return memory;
    const HomeLock files;
    if (!files) return Refuse(files.Error());
    memory = Join(name, MutexFilePath(name));
    if (memory) Remember(open, name, memory);
    return memory;
}

std::shared_ptr<MutexMemory> MutexMemory::OpenOrMake(const std::string& name, bool own, bool& existed) {
    OpenMutexes& open = TheOpenMutexes();
    const std::scoped_lock guard(open.lock);
    std::shared_ptr<MutexMemory> memory = Known(open, name);
    existed = memory != nullptr;
    if (memory) return memory;
    const HomeLock files;
    if (!files) return Refuse(files.Error());
    const std::string path = MutexFilePath(name);
    memory = Join(name, path);
    existed = memory != nullptr;
    if (!memory && GetLastError() == ERROR_FILE_NOT_FOUND) memory = Make(name, path, own);
    if (memory) Remember(open, name, memory);
    return memory;
}

MutexMemory::MutexMemory(MappedPage page, Descriptor file, std::string path) noexcept
    : m_page(std::move(page)), m_file(std::move(file)), m_path(std::move(path)), m_process(GetCurrentProcessId()) {}

MutexMemory::~MutexMemory() {
    // The host, when the owning thread ends, and the thread's other mutexes lead to this page.
    if (m_page->mutex.IsOwnedHere()) m_page.release();
    // A forked process shares the lock with the one that took it, and must not give it up for both.
    if (!m_file || !IsOfThisProcess()) return;
    const HomeLock files;
    if (files && LockMutexFile(m_file, LOCK_EX)) unlink(m_path.c_str());
    // A page that stays would keep the lock as well.
    LockMutexFile(m_file, LOCK_UN);
}

SharedMutex& MutexMemory::Mutex() noexcept { return m_page->mutex; }

}  // namespace wnplatform
