// What tests have another process do: the first argument is the deed, the others its own.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

namespace {

constexpr DWORD kForever = 60'000;  // ends by itself should the test not end it

void Announce(const char* ready) {
    std::ofstream file(ready, std::ios::binary);
    file << "ready";
}

HANDLE OpenForWriting(const char* path) {
    return CreateFileA(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

int OwnMutex(const char* name, const char* ready, const char* milliseconds) {
    const HANDLE mutex = CreateMutexA(nullptr, FALSE, name);
    if (WaitForSingleObject(mutex, INFINITE) == WAIT_FAILED) return 1;
    Announce(ready);
    Sleep(static_cast<DWORD>(std::atoi(milliseconds)));
    return 0;
}

// Opens what another process made and adds a byte to it.
int OpenMutexAndFile(const char* name, const char* path) {
    const HANDLE mutex = OpenMutexA(SYNCHRONIZE | MUTEX_MODIFY_STATE, FALSE, name);
    if (WaitForSingleObject(mutex, INFINITE) != WAIT_OBJECT_0) return 1;
    DWORD bytes = 0;
    if (!WriteFile(OpenForWriting(path), "x", 1, &bytes, nullptr)) return 2;
    return ReleaseMutex(mutex) ? 0 : 3;
}

int WriteProcessId(const char* path) {
    std::ofstream file(path, std::ios::binary);
    file << GetCurrentProcessId();
    return file.flush() ? 0 : 1;
}

// Adds one to the number in a file, many times, each under the mutex.
int Count(const char* name, const char* path, const char* times) {
    const HANDLE mutex = CreateMutexA(nullptr, FALSE, name);
    const HANDLE file = OpenForWriting(path);
    for (int i = std::atoi(times); i > 0; --i) {
        if (WaitForSingleObject(mutex, INFINITE) != WAIT_OBJECT_0) return 1;
        int number = 0;
        DWORD bytes = 0;
        SetFilePointer(file, 0, nullptr, FILE_BEGIN);
        ReadFile(file, &number, sizeof(number), &bytes, nullptr);
        ++number;
        SetFilePointer(file, 0, nullptr, FILE_BEGIN);
        WriteFile(file, &number, sizeof(number), &bytes, nullptr);
        if (!ReleaseMutex(mutex)) return 2;
    }
    return 0;
}

// Makes, owns, gives up and closes a mutex, many times; two owners at a time would show in the file.
int MakeAndClose(const char* name, const char* path, const char* times) {
    const HANDLE file = OpenForWriting(path);
    for (int i = std::atoi(times); i > 0; --i) {
        const HANDLE mutex = CreateMutexA(nullptr, FALSE, name);
        if (WaitForSingleObject(mutex, INFINITE) != WAIT_OBJECT_0) return 1;
        if (!LockFile(file, 0, 0, 1, 0)) return 2;
        if (!UnlockFile(file, 0, 0, 1, 0)) return 3;
        if (!ReleaseMutex(mutex)) return 4;
        CloseHandle(mutex);
    }
    return 0;
}

int Append(const char* path, const char* text, const char* times) {
    const HANDLE file = OpenForWriting(path);
    const std::string line = std::string(200, *text) + "\n";
    for (int i = std::atoi(times); i > 0; --i) {
        OVERLAPPED end{};
        end.Offset = 0xFFFFFFFF;
        end.OffsetHigh = 0xFFFFFFFF;
        DWORD bytes = 0;
        if (!WriteFile(file, line.data(), static_cast<DWORD>(line.size()), &bytes, &end)) return 1;
    }
    return 0;
}

int LockTenBytes(const char* path, const char* ready) {
    if (!LockFile(OpenForWriting(path), 0, 0, 10, 0)) return 1;
    Announce(ready);
    Sleep(kForever);
    return 0;
}

int WriteArguments(int count, char** arguments) {
    std::ofstream file(arguments[2], std::ios::binary);
    for (int i = 3; i < count; ++i) file << '<' << arguments[i] << '>';
    return file.flush() ? 0 : 1;
}

}  // namespace

int main(int count, char** arguments) {
    const std::string deed = count > 2 ? arguments[1] : "";
    if (deed == "exit") return std::atoi(arguments[2]);
    if (deed == "sleep") Sleep(static_cast<DWORD>(std::atoi(arguments[2])));
    if (deed == "arguments") return WriteArguments(count, arguments);
    if (deed == "id") return WriteProcessId(arguments[2]);
    if (deed == "open" && count == 4) return OpenMutexAndFile(arguments[2], arguments[3]);
    if (deed == "lock" && count == 4) return LockTenBytes(arguments[2], arguments[3]);
    if (deed == "own" && count == 5) return OwnMutex(arguments[2], arguments[3], arguments[4]);
    if (deed == "count" && count == 5) return Count(arguments[2], arguments[3], arguments[4]);
    if (deed == "make" && count == 5) return MakeAndClose(arguments[2], arguments[3], arguments[4]);
    if (deed == "append" && count == 5) return Append(arguments[2], arguments[3], arguments[4]);
    return deed == "sleep" ? 0 : 99;
}
