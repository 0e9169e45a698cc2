#include "common/logging/LogFile.h"

#include <cstdio>

#include "common/logging/FilePlace.h"

namespace wncom {
namespace {

constexpr DWORD kLineWait = 500;
constexpr DWORD kCloseWait = 1000;
constexpr std::size_t kMutexNameBytes = 520;

// The bytes that were written: to the file's end wherever that is, found and written in one step.
DWORD WriteAtEnd(HANDLE file, std::string_view text) noexcept {
    OVERLAPPED end = FilePlace(~ULONGLONG{0});
    DWORD written = 0;
    WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, &end);
    return written;
}

void CutFromEnd(HANDLE file, DWORD bytes) noexcept {
    if (SetFilePointer(file, -static_cast<LONG>(bytes), nullptr, FILE_END) != INVALID_SET_FILE_POINTER) {
        SetEndOfFile(file);
    }
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
    const HANDLE file = CreateFileA(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &security,
                                    OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    m_file = file;
    m_endIsUnknown = true;

    char name[kMutexNameBytes];
    MakeMutexName(path, name);
    m_mutex = OpenMutexA(SYNCHRONIZE | MUTEX_MODIFY_STATE, TRUE, name);
    if (!m_mutex) m_mutex = CreateMutexA(&security, FALSE, name);
    if (m_mutex) return true;
    OutputDebugStringA("QB Logging - unable to create mutex!!! \t--> ");
    OutputDebugStringA(name);
    OutputDebugStringA("\n");
    Close();
    return false;
}

// A process that died while it held the mutex may have left half a line.
bool LogFile::Obtain(DWORD milliseconds) noexcept {
    const DWORD result = WaitForSingleObject(m_mutex, milliseconds);
    if (result == WAIT_ABANDONED) EndHalfLine();
    return result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
}

void LogFile::EndHalfLine() noexcept {
    const ULONGLONG size = FileSize(m_file);
    char last = '\n';
    DWORD read = 0;
    OVERLAPPED at = FilePlace(size - 1);
    if (size == 0 || !ReadFile(m_file, &last, 1, &read, &at) || last == '\n') return;
    const std::string_view end = last == '\r' ? "\n" : "\r\n";
    WriteAtEnd(m_file, end);
}

LogFile::Outcome LogFile::Append(std::string_view text) noexcept {
    if (!Obtain(kLineWait)) return Outcome::Dropped;
    // When the only process that has the mutex open dies, the mutex goes with it, and no abandonment is reported.
    if (m_endIsUnknown.load(std::memory_order_relaxed)) {
        EndHalfLine();
        m_endIsUnknown = false;
    }
    const DWORD written = WriteAtEnd(m_file, text);
    const bool whole = written == text.size();
    // On a full disk, or at a size limit, the first part of the line may have been written.
    if (!whole && written != 0) CutFromEnd(m_file, written);
    ReleaseMutex(m_mutex);
    return whole ? Outcome::Written : Outcome::Failed;
}

bool LogFile::Lock() noexcept { return Obtain(kCloseWait); }

void LogFile::Unlock() noexcept { ReleaseMutex(m_mutex); }

void LogFile::Close() noexcept {
    if (m_file) CloseHandle(m_file);
    if (m_mutex) CloseHandle(m_mutex);
    m_file = nullptr;
    m_mutex = nullptr;
}

}  // namespace wncom
