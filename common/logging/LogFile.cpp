#include "common/logging/LogFile.h"

#include <cstdio>

namespace wncom {
namespace {

constexpr DWORD kLineWait = 500;
constexpr DWORD kCloseWait = 1000;
constexpr std::size_t kMutexNameBytes = 520;

// Whoever ended without releasing the mutex left whole lines behind: a line is one write.
bool Obtain(HANDLE mutex, DWORD milliseconds) noexcept {
    const DWORD result = WaitForSingleObject(mutex, milliseconds);
    return result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
}

bool IsNameCharacter(char c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
           std::string_view("_-#.~()[]{}").find(c) != std::string_view::npos;
}

// A name that can be a kernel object's, the same for every process that is configured with the same path.
void MakeMutexName(const char* path, char (&name)[kMutexNameBytes]) noexcept {
    std::snprintf(name, sizeof(name), "QB_RMX_LOGGING_MUTEX-%s", path);
    for (char* c = name; *c; ++c) {
        if (*c >= 'A' && *c <= 'Z') *c = static_cast<char>(*c - 'A' + 'a');
        if (!IsNameCharacter(*c)) *c = '_';
    }
}

}  // namespace

bool LogFile::Open(const char* path) noexcept {
    if (!path) return false;
    SECURITY_DESCRIPTOR everyone;
    SECURITY_ATTRIBUTES security{sizeof(security), &everyone, TRUE};
    if (!InitializeSecurityDescriptor(&everyone, SECURITY_DESCRIPTOR_REVISION) ||
        !SetSecurityDescriptorDacl(&everyone, TRUE, nullptr, FALSE)) {
        OutputDebugStringA("Logging - warning: unable to set security on log file.\n");
        security.lpSecurityDescriptor = nullptr;
    }
    m_file.reset(CreateFileA(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &security,
                             OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!m_file) return false;

    char name[kMutexNameBytes];
    MakeMutexName(path, name);
    m_mutex.reset(OpenMutexA(SYNCHRONIZE | MUTEX_MODIFY_STATE, TRUE, name));
    if (!m_mutex) m_mutex.reset(CreateMutexA(&security, FALSE, name));
    if (m_mutex) return true;
    OutputDebugStringA("QB Logging - unable to create mutex!!! \t--> ");
    OutputDebugStringA(name);
    OutputDebugStringA("\n");
    Close();
    return false;
}

LogFile::Outcome LogFile::Append(std::string_view text) noexcept {
    // The file's end wherever it is, found and written in one step.
    OVERLAPPED end{};
    end.Offset = end.OffsetHigh = 0xFFFFFFFF;
    if (!Obtain(m_mutex.get(), kLineWait)) return Outcome::Dropped;
    DWORD written = 0;
    const bool whole = WriteFile(m_file.get(), text.data(), static_cast<DWORD>(text.size()), &written, &end) &&
                       written == text.size();
    ReleaseMutex(m_mutex.get());
    return whole ? Outcome::Written : Outcome::Failed;
}

bool LogFile::Lock() noexcept { return Obtain(m_mutex.get(), kCloseWait); }

void LogFile::Unlock() noexcept { ReleaseMutex(m_mutex.get()); }

void LogFile::Close() noexcept {
    m_file.reset();
    m_mutex.reset();
}

}  // namespace wncom
