// Where mutexes live: in a page of the process without a name, in a file that all processes of the home map with one.
#pragma once

#include <memory>
#include <string>

#include "platform/files/Descriptor.h"
#include "platform/sync/SharedMutex.h"

namespace wnplatform {

struct MutexPage;
struct UnmapPage {
    void operator()(MutexPage* page) const noexcept;
};
using MappedPage = std::unique_ptr<MutexPage, UnmapPage>;

// One mutex as this process has it mapped; all its handles here share it.
class MutexMemory {
public:
    // A free mutex without a name; null with the last error set when memory runs out.
    static std::shared_ptr<MutexMemory> MakePrivate();

    // The mutex of a name, which holds 1 to MAX_PATH - 1 bytes. Open finds only one that a living process holds open;
    // OpenOrMake makes it where there is none, owned by the calling thread if so asked, and tells in existed which of
    // both it did. Null with the last error set.
    static std::shared_ptr<MutexMemory> Open(const std::string& name);
    static std::shared_ptr<MutexMemory> OpenOrMake(const std::string& name, bool own, bool& existed);

    MutexMemory(MappedPage page, Descriptor file, std::string path) noexcept;
    MutexMemory(const MutexMemory&) = delete;
    MutexMemory& operator=(const MutexMemory&) = delete;
    ~MutexMemory();

    SharedMutex& Mutex() noexcept;
    // False in a process that a fork made out of the one that opened it.
    bool IsOfThisProcess() const noexcept { return m_process == GetCurrentProcessId(); }

private:
    MappedPage m_page;
    Descriptor m_file;   // empty for a private one
    std::string m_path;  // of the file
    DWORD m_process;
};

}  // namespace wnplatform
