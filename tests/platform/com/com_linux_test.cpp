#include <gtest/gtest.h>
#include <windows.h>

#include <ole2.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "tests/support/TestHome.h"

namespace {

constexpr CLSID kClass{0x1B1F5C1E, 0x0C57, 0x4B0E, {0x9A, 0x5B, 0x2A, 0x63, 0x11, 0x7E, 0x40, 0x01}};

// Registers the class and has its server call a function in the middle of each creation.
void RegisterServerThatCalls(void (*call)()) {
    const std::string path = wncom::test::ProgramFolder() + "/platform_server.dll";
    HKEY key;
    ASSERT_EQ(RegCreateKeyExA(HKEY_CLASSES_ROOT, "CLSID\\{1B1F5C1E-0C57-4B0E-9A5B-2A63117E4001}\\InprocServer32", 0,
                              nullptr, 0, KEY_WRITE, nullptr, &key, nullptr),
              0);
    EXPECT_EQ(RegSetValueExA(key, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(path.c_str()),
                             static_cast<DWORD>(path.size() + 1)),
              0);
    RegCloseKey(key);
    void* object = nullptr;
    EXPECT_EQ(CoCreateInstance(kClass, nullptr, 1, IID_IDispatch, &object), E_NOINTERFACE);
    HMODULE module = nullptr;
    ASSERT_TRUE(GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT, path.c_str(), &module));
    reinterpret_cast<void (*)(void (*)())>(GetProcAddress(module, "DuringCreation"))(call);
}

// The class object is no lock on its module, as in most servers: whoever unloads idle servers meanwhile, on any
// thread, finds one that agrees.
TEST(ComOnLinux, KeepsAServerLoadedWhileItCreates) {
    for (void (*const unload)() : {CoFreeUnusedLibraries, CoUninitialize}) {
        ASSERT_EQ(CoInitialize(nullptr), S_OK);
        RegisterServerThatCalls(unload);
        void* object = nullptr;
        EXPECT_EQ(CoCreateInstance(kClass, nullptr, 1, IID_IDispatch, &object), E_NOINTERFACE);
        EXPECT_EQ(object, nullptr);
        CoUninitialize();
        CoFreeUnusedLibraries();
    }
}

TEST(ComOnLinux, AForkedChildMakesOtherIdentifiersThanItsParent) {
    GUID first;
    ASSERT_EQ(CoCreateGuid(&first), S_OK);
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    GUID own;
    CoCreateGuid(&own);
    if (child == 0) _exit(write(ends[1], &own, sizeof own) == sizeof own ? 0 : 1);
    GUID childs;
    EXPECT_EQ(read(ends[0], &childs, sizeof childs), static_cast<ssize_t>(sizeof childs));
    EXPECT_EQ(waitpid(child, nullptr, 0), child);
    EXPECT_NE(own, childs);
    close(ends[0]);
    close(ends[1]);
}

}  // namespace
