#include <string>
#include <string_view>

#include "platform/core/Errors.h"
#include "platform/core/Guarded.h"
#include "platform/core/Handles.h"
#include "platform/sync/MutexMemory.h"

namespace wnplatform {
namespace {

class MutexObject final : public KernelObject {
public:
    static constexpr ObjectKind kKind = ObjectKind::Mutex;

    MutexObject(std::shared_ptr<MutexMemory> memory, bool mayWait) noexcept
        : KernelObject(kKind), m_memory(std::move(memory)), m_mayWait(mayWait) {}

    DWORD Wait(DWORD milliseconds) noexcept override {
        if (m_mayWait) return m_memory->Mutex().Wait(milliseconds);
        SetLastError(ERROR_ACCESS_DENIED);
        return WAIT_FAILED;
    }
    bool Release() noexcept { return m_memory->Mutex().Release(); }

private:
    std::shared_ptr<MutexMemory> m_memory;
    bool m_mayWait;
};

// The name within the home, which is one session: both prefixes lead to it. Returns the error for one that is none.
DWORD ReadName(std::string_view given, std::string& name) {
    for (const std::string_view prefix : {"Global\\", "Local\\"}) {
        if (!given.starts_with(prefix)) continue;
        given.remove_prefix(prefix.size());
        break;
    }
    if (given.empty()) return ERROR_INVALID_NAME;
    if (given.find('\\') != std::string_view::npos) return ERROR_PATH_NOT_FOUND;
    if (given.size() >= MAX_PATH) return ERROR_FILENAME_EXCED_RANGE;
    name = given;
    return ERROR_SUCCESS;
}

HANDLE NoMutex(DWORD code) noexcept {
    SetLastError(code);
    return nullptr;
}

HANDLE CreatePrivate(bool own) {
    std::shared_ptr<MutexMemory> memory = MutexMemory::MakePrivate();
    if (!memory) return nullptr;
    if (own) memory->Mutex().Wait(0);
    const HANDLE handle = AddObject(std::make_unique<MutexObject>(std::move(memory), true));
    SetLastError(NO_ERROR);
    return handle;
}

HANDLE CreateNamed(const char* given, bool own) {
    std::string name;
    if (const DWORD error = ReadName(given, name)) return NoMutex(error);
    bool existed = false;
    std::shared_ptr<MutexMemory> memory = MutexMemory::OpenOrMake(name, own, existed);
    if (!memory) return nullptr;
    const HANDLE handle = AddObject(std::make_unique<MutexObject>(std::move(memory), true));
    SetLastError(existed ? ERROR_ALREADY_EXISTS : NO_ERROR);
    return handle;
}

}  // namespace
}  // namespace wnplatform

using wnplatform::Guarded;

HANDLE CreateMutexA(LPSECURITY_ATTRIBUTES, BOOL initialOwner, LPCSTR name) {
    return Guarded(HANDLE{nullptr}, [&] {
        if (!name || !*name) return wnplatform::CreatePrivate(initialOwner != FALSE);
        return wnplatform::CreateNamed(name, initialOwner != FALSE);
    });
}

HANDLE OpenMutexA(DWORD access, BOOL, LPCSTR name) {
    return Guarded(HANDLE{nullptr}, [&]() -> HANDLE {
        if (!name) return wnplatform::NoMutex(ERROR_INVALID_PARAMETER);
        std::string key;
        if (const DWORD error = wnplatform::ReadName(name, key)) return wnplatform::NoMutex(error);
        std::shared_ptr<wnplatform::MutexMemory> memory = wnplatform::MutexMemory::Open(key);
        if (!memory) return nullptr;
        const bool mayWait = (access & SYNCHRONIZE) != 0;
        return wnplatform::AddObject(std::make_unique<wnplatform::MutexObject>(std::move(memory), mayWait));
    });
}

BOOL ReleaseMutex(HANDLE handle) {
    const wnplatform::ObjectUse<wnplatform::MutexObject> mutex(handle);
    if (!mutex) return FALSE;
    return mutex->Release() ? TRUE : wnplatform::Fail(ERROR_NOT_OWNER);
}
