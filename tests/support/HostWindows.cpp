// The registry is the machine's, so that each test process clears away what it, or one that crashed before it, has
// registered out of the folder of the test programs. Test processes of one machine must not overlap: they see one
// another's entries.
#include <windows.h>

#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <vector>

#include "tests/support/Com.h"
#include "tests/support/Host.h"
#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

std::vector<std::string> Subkeys(const std::string& key) {
    std::vector<std::string> names;
    HKEY handle = nullptr;
    if (RegOpenKeyExA(HKEY_CLASSES_ROOT, key.c_str(), 0, KEY_READ, &handle) != ERROR_SUCCESS) return names;
    char name[256];
    for (DWORD index = 0, size = sizeof(name);
         RegEnumKeyExA(handle, index, name, &size, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
         ++index, size = sizeof(name)) {
        names.emplace_back(name);
    }
    RegCloseKey(handle);
    return names;
}

std::string Lower(std::string text) {
    for (char& unit : text) unit = static_cast<char>(std::tolower(static_cast<unsigned char>(unit)));
    return text;
}

bool Ours(const std::string& path) { return Lower(path).find(Lower(ProgramFolder())) != std::string::npos; }

// The ids below this key at one of whose subkeys a path into our folder stands.
void Clear(const std::string& key, const std::vector<std::string>& places) {
    for (const std::string& id : Subkeys(key)) {
        for (const std::string& place : places) {
            if (!Ours(RegistryValue(HKEY_CLASSES_ROOT, key + "\\" + id + "\\" + place, nullptr))) continue;
            RegDeleteTreeA(HKEY_CLASSES_ROOT, (key + "\\" + id).c_str());
            break;
        }
    }
}

void ClearRegistry() {
    RegDeleteTreeA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Quillbeck");
    Clear("CLSID", {"InprocServer32"});
    Clear("TypeLib", {"1.0\\409\\win32", "1.0\\409\\win64"});
    for (const std::string& name : Subkeys("")) {
        if (name.starts_with("QBNORVEL.")) RegDeleteTreeA(HKEY_CLASSES_ROOT, name.c_str());
    }
}

std::string g_debugOutput;

// Output for a debugger travels as an exception, which the sender handles itself.
LONG CALLBACK WriteDebugOutput(EXCEPTION_POINTERS* exception) {
    const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
    if (record.ExceptionCode == DBG_PRINTEXCEPTION_C && record.NumberParameters >= 2 &&
        record.ExceptionInformation[0]) {
        std::ofstream file(g_debugOutput, std::ios::binary | std::ios::app);
        file.write(reinterpret_cast<const char*>(record.ExceptionInformation[1]),
                   static_cast<std::streamsize>(record.ExceptionInformation[0] - 1));
    }
    return EXCEPTION_CONTINUE_SEARCH;
}

// What a program leaves in the Windows directory and at the drive's root when it is told no other place.
void ClearDefaultFiles() {
    char folder[MAX_PATH];
    if (!GetWindowsDirectoryA(folder, sizeof(folder))) std::abort();
    for (const char* name : {"portmap.xml", "qbos.ini", "xmlcache.db", "xmlcache.db-journal"}) {
        DeleteFileA((std::string(folder) + "\\" + name).c_str());
    }
    DeleteFileA("\\qbv-event.log");
}

}  // namespace

std::string MakeHome() {
    ClearRegistry();
    char folder[MAX_PATH];
    char path[MAX_PATH];
    if (!GetTempPathA(sizeof(folder), folder) || !GetTempFileNameA(folder, "wnc", 0, path)) std::abort();
    DeleteFileA(path);
    std::filesystem::create_directory(path);
    // A path without a drive leads to that of the current folder.
    SetCurrentDirectoryA(path);
    ClearDefaultFiles();
    return path;
}

void RemoveHome(const std::string& path, bool keepFolder) {
    ClearRegistry();
    ClearDefaultFiles();
    SetCurrentDirectoryA("\\");
    std::error_code ignored;
    if (!keepFolder) std::filesystem::remove_all(path, ignored);
}

void SetEnvironment(const char* name, const char* value) { _putenv_s(name, value ? value : ""); }

void CaptureDebugOutput(const std::string& path) {
    if (g_debugOutput.empty()) AddVectoredExceptionHandler(1, WriteDebugOutput);
    g_debugOutput = path;
}

void KillProcess(unsigned long id) {
    const HANDLE process = OpenProcess(PROCESS_TERMINATE, FALSE, id);
    TerminateProcess(process, 1);
    CloseHandle(process);
}

std::string HostPath(const std::string& path) { return path; }

long LiveTexts() { return 0; }

}  // namespace wncom::test
