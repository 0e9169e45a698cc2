// Kernel services: files, named mutexes, processes, modules, time, initialisation files, debugger output.
//
// A path is taken as Windows would take it, with these readings on a host without drives: it may use either
// separator; "C:\x" and a path that begins with a single backslash lead into the drive folder of the home; a path
// that begins with "/" is the host's own absolute path; any other is relative to the current directory. Where the
// exact name is absent, each component falls back to a match without regard to case, whichever leads farthest. No
// other drive exists.
//
// Failures set the calling thread's last error to Windows' code. Handles may be used from any thread.
#pragma once

#include "windef.h"
#include "winerror.h"

// ---- last error -------------------------------------------------------------------------------------------------
DWORD GetLastError();
void SetLastError(DWORD code);

#define FORMAT_MESSAGE_ALLOCATE_BUFFER 0x00000100
#define FORMAT_MESSAGE_IGNORE_INSERTS 0x00000200
#define FORMAT_MESSAGE_FROM_SYSTEM 0x00001000
// The text of a system error code or status, ending in "\r\n". With FORMAT_MESSAGE_ALLOCATE_BUFFER the buffer
// argument receives a new text that LocalFree releases. Returns the text's length, 0 on failure.
DWORD FormatMessageA(DWORD flags, LPCVOID source, DWORD messageId, DWORD languageId, LPSTR buffer, DWORD size,
                     void* arguments);
HLOCAL LocalFree(HLOCAL memory);

// ---- handles ----------------------------------------------------------------------------------------------------
#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(static_cast<INT_PTR>(-1)))
#define WAIT_OBJECT_0 0x00000000U
#define WAIT_ABANDONED 0x00000080U
#define WAIT_TIMEOUT 0x00000102U
#define WAIT_FAILED 0xFFFFFFFFU
#define INFINITE 0xFFFFFFFFU
#define SYNCHRONIZE 0x00100000
#define MUTEX_MODIFY_STATE 0x0001
#define MUTEX_ALL_ACCESS 0x001F0001

// An object goes when its handle is closed and no call is using it any more; a call with a handle that is closed,
// null or none of the layer's fails with ERROR_INVALID_HANDLE. Handles are never inherited by a process that is
// started: bInheritHandle is accepted everywhere and means nothing here.
BOOL CloseHandle(HANDLE handle);
// Waits for a mutex (to own it) or a process (to end), in milliseconds.
DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds);

// ---- security ---------------------------------------------------------------------------------------------------
#define SECURITY_DESCRIPTOR_REVISION 1
struct ACL;
using PACL = ACL*;
// Only its discretionary list counts on this host: present and null means that all who
// may write the home may open the object.
struct SECURITY_DESCRIPTOR {
    BYTE Revision;
    BYTE Sbz1;
    WORD Control;
    PACL Dacl;
};
using PSECURITY_DESCRIPTOR = void*;
struct SECURITY_ATTRIBUTES {
    DWORD nLength;
    LPVOID lpSecurityDescriptor;
    BOOL bInheritHandle;
};
using LPSECURITY_ATTRIBUTES = SECURITY_ATTRIBUTES*;
BOOL InitializeSecurityDescriptor(PSECURITY_DESCRIPTOR descriptor, DWORD revision);
BOOL SetSecurityDescriptorDacl(PSECURITY_DESCRIPTOR descriptor, BOOL present, PACL list, BOOL defaulted);

// ---- files ------------------------------------------------------------------------------------------------------
#define GENERIC_READ 0x80000000U
#define GENERIC_WRITE 0x40000000U
#define FILE_SHARE_READ 0x00000001
#define FILE_SHARE_WRITE 0x00000002
#define FILE_SHARE_DELETE 0x00000004
#define CREATE_ALWAYS 2
#define OPEN_EXISTING 3
#define OPEN_ALWAYS 4
#define FILE_ATTRIBUTE_DIRECTORY 0x00000010
#define FILE_ATTRIBUTE_NORMAL 0x00000080
#define INVALID_FILE_ATTRIBUTES 0xFFFFFFFFU
#define FILE_BEGIN 0
#define FILE_END 2
#define INVALID_SET_FILE_POINTER 0xFFFFFFFFU
#define INVALID_FILE_SIZE 0xFFFFFFFFU
#define STD_OUTPUT_HANDLE (static_cast<DWORD>(-11))
#define MOVEFILE_REPLACE_EXISTING 0x00000001

struct OVERLAPPED {
    ULONG_PTR Internal;
    ULONG_PTR InternalHigh;
    DWORD Offset;
    DWORD OffsetHigh;
    HANDLE hEvent;
};
struct FILETIME {
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};
struct WIN32_FIND_DATAA {
    DWORD dwFileAttributes;
    FILETIME ftCreationTime;
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    DWORD nFileSizeHigh;
    DWORD nFileSizeLow;
    CHAR cFileName[MAX_PATH];
};

// Sharing modes bind handles within the home's processes only as far as byte-range locks do; they are accepted
// and not enforced. A new file in the home may be read and written by all who may write the home; one with a null
// access list by them and by nobody else, wherever it lies.
HANDLE CreateFileA(LPCSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD disposition,
                   DWORD flags, HANDLE templateFile);
HANDLE CreateFileW(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD disposition,
                   DWORD flags, HANDLE templateFile);
BOOL ReadFile(HANDLE file, LPVOID buffer, DWORD bytes, LPDWORD bytesRead, OVERLAPPED* at);
// An OVERLAPPED whose two offsets are 0xFFFFFFFF appends to the file's end in one step, wherever the end is then.
BOOL WriteFile(HANDLE file, LPCVOID buffer, DWORD bytes, LPDWORD bytesWritten, OVERLAPPED* at);
// From FILE_BEGIN or FILE_END and with a null high part only (ERROR_INVALID_PARAMETER).
DWORD SetFilePointer(HANDLE file, LONG distance, LPLONG distanceHigh, DWORD method);
DWORD GetFileSize(HANDLE file, LPDWORD sizeHigh);
BOOL SetEndOfFile(HANDLE file);
// Exclusive byte-range locks against every other handle, of this process and of others; they never wait
// (ERROR_LOCK_VIOLATION) and end with their holder. The handle must have been opened for writing. Locks exclude
// locks only: reads and writes of other handles pass. UnlockFile takes a range exactly as it was locked
// (ERROR_NOT_LOCKED).
BOOL LockFile(HANDLE file, DWORD offset, DWORD offsetHigh, DWORD bytes, DWORD bytesHigh);
BOOL UnlockFile(HANDLE file, DWORD offset, DWORD offsetHigh, DWORD bytes, DWORD bytesHigh);
DWORD GetFileAttributesA(LPCSTR path);
BOOL DeleteFileA(LPCSTR path);
// With MOVEFILE_REPLACE_EXISTING only (ERROR_INVALID_PARAMETER).
BOOL MoveFileExA(LPCSTR from, LPCSTR to, DWORD flags);
// Describes one file; there are no wildcards and no further files.
HANDLE FindFirstFileA(LPCSTR path, WIN32_FIND_DATAA* found);
BOOL FindClose(HANDLE search);
// Both return the length, or when the buffer is too small the size in bytes that is needed. A full path has a drive
// and backslashes when the path given leads into a drive, else it is one of the host; the file part must be null.
DWORD GetFullPathNameA(LPCSTR path, DWORD size, LPSTR full, LPSTR* filePart);
UINT GetWindowsDirectoryA(LPSTR path, UINT size);
// Standard output only; null when the process has none. Each call gives the same handle, and closing it leaves the
// descriptor open.
HANDLE GetStdHandle(DWORD which);

// ---- named mutexes ----------------------------------------------------------------------------------------------
// Shared by the processes of one home, recursive for their owner's thread, abandoned when it ends. Names count case,
// hold up to MAX_PATH - 1 bytes and no backslash (ERROR_PATH_NOT_FOUND) after a prefix of "Global\" or "Local\",
// which are one here. A null or empty name makes a mutex of this process. Whatever the attributes say, those who may
// write the home may open it, and nobody else (ERROR_ACCESS_DENIED). CreateMutexA sets the last error in success too:
// ERROR_ALREADY_EXISTS, or NO_ERROR for a new one.
HANDLE CreateMutexA(LPSECURITY_ATTRIBUTES security, BOOL initialOwner, LPCSTR name);
HANDLE OpenMutexA(DWORD access, BOOL inherit, LPCSTR name);
BOOL ReleaseMutex(HANDLE mutex);

// ---- processes --------------------------------------------------------------------------------------------------
#define DETACHED_PROCESS 0x00000008
#define NORMAL_PRIORITY_CLASS 0x00000020
#define STARTF_USESHOWWINDOW 0x00000001
#define SW_HIDE 0
#define STILL_ACTIVE 0x00000103U

struct STARTUPINFOA {
    DWORD cb;
    LPSTR lpReserved;
    LPSTR lpDesktop;
    LPSTR lpTitle;
    DWORD dwX;
    DWORD dwY;
    DWORD dwXSize;
    DWORD dwYSize;
    DWORD dwXCountChars;
    DWORD dwYCountChars;
    DWORD dwFillAttribute;
    DWORD dwFlags;
    WORD wShowWindow;
    WORD cbReserved2;
    LPBYTE lpReserved2;
    HANDLE hStdInput;
    HANDLE hStdOutput;
    HANDLE hStdError;
};
struct PROCESS_INFORMATION {
    HANDLE hProcess;
    HANDLE hThread;
    DWORD dwProcessId;
    DWORD dwThreadId;
};
// Without an application the command line's first word, by the C runtime's quoting rules, names the program: ".exe"
// may be left out, and a bare name is looked up beside the running program, in the current folder, in the Windows
// directory and in PATH. A program that cannot run at all (ERROR_BAD_EXE_FORMAT, ERROR_ACCESS_DENIED) fails the call.
// Standard descriptors are the caller's, nothing else is inherited; DETACHED_PROCESS gives a session of its own and
// empty standard descriptors. Other flags, the security attributes and the startup record have no effect.
BOOL CreateProcessA(LPCSTR application, LPSTR commandLine, LPSECURITY_ATTRIBUTES processSecurity,
                    LPSECURITY_ATTRIBUTES threadSecurity, BOOL inheritHandles, DWORD flags, LPVOID environment,
                    LPCSTR directory, STARTUPINFOA* startup, PROCESS_INFORMATION* information);
// The exit status, STILL_ACTIVE while the process runs; 128 plus the signal's number when a signal ended it.
BOOL GetExitCodeProcess(HANDLE process, LPDWORD exitCode);
DWORD GetCurrentProcessId();
DWORD GetCurrentThreadId();
void Sleep(DWORD milliseconds);

// ---- modules ----------------------------------------------------------------------------------------------------
#define LOAD_WITH_ALTERED_SEARCH_PATH 0x00000008
#define GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT 0x00000002
#define GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS 0x00000004
#define DLL_PROCESS_ATTACH 1
#define DLL_PROCESS_DETACH 0

// A name without an extension gets ".dll". A bare name means the module of that name that is loaded already, else the
// file in the program's folder, the Windows directory, the current directory or one of PATH. The counts of loads and
// frees pair up per module. Failures: ERROR_MOD_NOT_FOUND (the file, or a module that it needs), ERROR_PROC_NOT_FOUND
// (a function that it needs), ERROR_BAD_EXE_FORMAT, ERROR_DLL_INIT_FAILED (its DllMain refused or threw). A static
// object whose constructor throws ends the process.
HMODULE LoadLibraryA(LPCSTR path);
HMODULE LoadLibraryExA(LPCSTR path, HANDLE reserved, DWORD flags);
BOOL FreeLibrary(HMODULE module);
FARPROC GetProcAddress(HMODULE module, LPCSTR name);
DWORD GetModuleFileNameA(HMODULE module, LPSTR path, DWORD size);
BOOL GetModuleHandleExA(DWORD flags, LPCSTR nameOrAddress, HMODULE* module);
// Threads are never announced to modules on this host, so this only checks the handle.
BOOL DisableThreadLibraryCalls(HMODULE module);

// ---- time -------------------------------------------------------------------------------------------------------
struct SYSTEMTIME {
    WORD wYear;
    WORD wMonth;
    WORD wDayOfWeek;
    WORD wDay;
    WORD wHour;
    WORD wMinute;
    WORD wSecond;
    WORD wMilliseconds;
};
void GetLocalTime(SYSTEMTIME* time);

// ---- initialisation files ---------------------------------------------------------------------------------------
// A bare file name is looked up in the Windows directory only. Each call reads the file anew; one above 16 MB counts
// as unreadable.
//
// Of a value the number at its start counts, with a sign or a "0x", "0o" or "0b" before it, modulo 2^32; other text
// is 0, and an empty or missing value is the default.
UINT GetPrivateProfileIntA(LPCSTR section, LPCSTR key, INT defaultValue, LPCSTR file);
// A null value deletes the key, a null key the section. Readers and other writers never meet a half-written file.
BOOL WritePrivateProfileStringA(LPCSTR section, LPCSTR key, LPCSTR value, LPCSTR file);

// ---- debugger output --------------------------------------------------------------------------------------------
// Goes to the standard error of the process, or is appended to the file that WNCOM_DEBUG_OUTPUT names, in one write.
// The last error stays.
void OutputDebugStringA(LPCSTR text);

// ---- atomic counters --------------------------------------------------------------------------------------------
inline LONG InterlockedIncrement(volatile LONG* value) { return __atomic_add_fetch(value, 1, __ATOMIC_SEQ_CST); }
inline LONG InterlockedDecrement(volatile LONG* value) { return __atomic_sub_fetch(value, 1, __ATOMIC_SEQ_CST); }
