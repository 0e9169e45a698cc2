// What only this host shows of modules.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "tests/support/TestHome.h"

namespace {

using wncom::test::ProgramFolder;
using wncom::test::ReadWholeFile;
using wncom::test::WriteWholeFile;

bool IsMapped(const std::string& file) { return ReadWholeFile("/proc/self/maps").find(file) != std::string::npos; }

TEST(Modules, LeaveTheProcesssMemoryWhenTheyAreFreed) {
    const HMODULE module = LoadLibraryA((ProgramFolder() + "/platform_server.dll").c_str());
    ASSERT_NE(module, nullptr);
    EXPECT_TRUE(IsMapped("platform_server.dll"));
    FreeLibrary(module);
    EXPECT_FALSE(IsMapped("platform_server.dll"));
}

// On Windows no exception passes the loader.
TEST(Modules, ThatThrowAtTheirStartAreNotLoaded) {
    const std::string path = ProgramFolder() + "/platform_throwing.dll";
    EXPECT_EQ(LoadLibraryA(path.c_str()), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_DLL_INIT_FAILED});
    EXPECT_FALSE(IsMapped("platform_throwing.dll"));
}

TEST(Modules, NeedNotBeToldOfThreads) {
    const HMODULE module = LoadLibraryA((ProgramFolder() + "/platform_no_server.dll").c_str());
    EXPECT_TRUE(DisableThreadLibraryCalls(module));
    FreeLibrary(module);
}

TEST(Modules, ThatAreCutShortAreNoModules) {
    const std::string whole = ReadWholeFile(ProgramFolder() + "/platform_server.dll");
    for (const std::size_t length : {std::size_t{0}, std::size_t{20}, std::size_t{100}, std::size_t{5000}}) {
        const std::string cut = wncom::test::HomePath() + "/drive_c/cut.dll";
        WriteWholeFile(cut, whole.substr(0, length));
        EXPECT_EQ(LoadLibraryA("C:\\cut.dll"), nullptr);
        EXPECT_EQ(GetLastError(), DWORD{ERROR_BAD_EXE_FORMAT}) << length;
    }
}

TEST(Modules, OnTheDriveAreFoundByTheirPathThere) {
    WriteWholeFile(wncom::test::HomePath() + "/drive_c/Dir/Copy.dll",
                   ReadWholeFile(ProgramFolder() + "/platform_no_server.dll"));
    const HMODULE module = LoadLibraryA("c:\\dir\\copy.dll");
    ASSERT_NE(module, nullptr);
    char path[1024];
    GetModuleFileNameA(module, path, sizeof path);
    EXPECT_EQ(path, wncom::test::HomePath() + "/drive_c/Dir/Copy.dll");
    FreeLibrary(module);
}

}  // namespace
