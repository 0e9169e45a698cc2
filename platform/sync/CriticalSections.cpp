#include <mutex>

#include "winbase.h"

namespace {

std::recursive_mutex& LockOf(CRITICAL_SECTION* section) {
    return *static_cast<std::recursive_mutex*>(section->Mutex);
}

}  // namespace

void InitializeCriticalSection(CRITICAL_SECTION* section) { section->Mutex = new std::recursive_mutex; }

void EnterCriticalSection(CRITICAL_SECTION* section) { LockOf(section).lock(); }

void LeaveCriticalSection(CRITICAL_SECTION* section) { LockOf(section).unlock(); }

void DeleteCriticalSection(CRITICAL_SECTION* section) {
    delete &LockOf(section);
    section->Mutex = nullptr;
}
