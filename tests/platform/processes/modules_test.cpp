#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "tests/platform/OnWine.h"
#include "tests/support/TestHome.h"

namespace {

using wncom::test::ProgramFolder;

template <class Function>
Function Export(HMODULE module, LPCSTR name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

std::string Path(const std::string& module) { return ProgramFolder() + "/" + module + ".dll"; }

bool IsLoaded(const std::string& path) {
    HMODULE module;
    return GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT, path.c_str(), &module) != FALSE;
}

TEST(Modules, StayAsLongAsTheyAreLoadedAndNoLonger) {
    const std::string path = Path("platform_no_server");
    const HMODULE first = LoadLibraryA(path.c_str());
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(LoadLibraryExA(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH), first);
    EXPECT_TRUE(FreeLibrary(first));
    EXPECT_EQ(Export<int (*)()>(first, "Answer")(), 42);
    EXPECT_TRUE(FreeLibrary(first));
    EXPECT_FALSE(IsLoaded(path));
    EXPECT_FALSE(FreeLibrary(first));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_MOD_NOT_FOUND});
}

TEST(Modules, AreFoundWithoutExtensionAndBesideTheProgram) {
    for (const std::string& name : {std::string("platform_no_server"), std::string("PLATFORM_NO_SERVER.DLL"),
                                    ProgramFolder() + "/platform_no_server"}) {
        const HMODULE module = LoadLibraryA(name.c_str());
        EXPECT_NE(module, nullptr) << name;
        FreeLibrary(module);
    }
}

TEST(Modules, AreTheSameUnderAPathInAnotherCase) {
    const HMODULE module = LoadLibraryA(Path("platform_no_server").c_str());
    EXPECT_EQ(LoadLibraryA(Path("PLATFORM_No_Server").c_str()), module);
    FreeLibrary(module);
    FreeLibrary(module);
}

TEST(Modules, ThatAreMissingOrNoModulesSaySo) {
    SetLastError(0);
    EXPECT_EQ(LoadLibraryA(Path("absent").c_str()), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_MOD_NOT_FOUND});
    const std::string text = ProgramFolder() + "/platform_core_test_text.dll";
    std::ofstream(text) << "no module";
    EXPECT_EQ(LoadLibraryA(text.c_str()), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_BAD_EXE_FORMAT});
    std::remove(text.c_str());
    EXPECT_EQ(LoadLibraryA(nullptr), nullptr);
}

TEST(Modules, ThatRefuseToStartAreNotLoaded) {
    EXPECT_EQ(LoadLibraryA(Path("platform_refusing").c_str()), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_DLL_INIT_FAILED});
    EXPECT_FALSE(IsLoaded(Path("platform_refusing")));
}

TEST(Modules, AreStartedAndEndedOnceWithTheirOwnHandle) {
    const HMODULE module = LoadLibraryA(Path("platform_server").c_str());
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(Export<HINSTANCE (*)()>(module, "Answer")(), module);
    // Refused for modules with thread-local storage, which the compiler's runtime may give them.
    DisableThreadLibraryCalls(module);
    EXPECT_EQ(LoadLibraryA(Path("platform_server").c_str()), module);
    SetLastError(0);
    FreeLibrary(module);
    EXPECT_EQ(GetLastError(), 0U);
    FreeLibrary(module);
    EXPECT_EQ(GetLastError(), 4711U);
}

TEST(Modules, ShowOnlyTheirOwnExports) {
    const HMODULE module = LoadLibraryA(Path("platform_server").c_str());
    ASSERT_NE(module, nullptr);
    EXPECT_NE(GetProcAddress(module, "DllGetClassObject"), nullptr);
    for (const char* name : {"malloc", "DllMain", "NoSuchExport"}) {
        SetLastError(0);
        EXPECT_EQ(GetProcAddress(module, name), nullptr) << name;
        EXPECT_EQ(GetLastError(), DWORD{ERROR_PROC_NOT_FOUND});
    }
    FreeLibrary(module);
}

TEST(Modules, TellTheirPath) {
    const HMODULE module = LoadLibraryA("platform_no_server");
    char path[1024];
    const DWORD length = GetModuleFileNameA(module, path, sizeof path);
    const std::string whole(path, length);
    EXPECT_EQ(std::filesystem::path(whole), std::filesystem::path(Path("platform_no_server")));
    EXPECT_EQ(GetModuleFileNameA(module, path, 5), 5U);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
    // Wine fills the room without a terminator.
    EXPECT_EQ(std::string(path, 5), whole.substr(0, 4) + (wncom::test::OnWine() ? whole[4] : '\0'));
    FreeLibrary(module);
    EXPECT_TRUE(std::string(path, GetModuleFileNameA(nullptr, path, sizeof path)).starts_with(ProgramFolder()));
}

TEST(Modules, AreFoundByAnAddressInThem) {
    const HMODULE module = LoadLibraryA("platform_no_server");
    const auto address = Export<LPCSTR>(module, "Answer");
    HMODULE found = nullptr;
    EXPECT_TRUE(GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, address, &found));
    EXPECT_EQ(found, module);
    // That was a load of its own.
    FreeLibrary(module);
    EXPECT_TRUE(IsLoaded(Path("platform_no_server")));
    FreeLibrary(module);
    EXPECT_FALSE(GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, "", nullptr));
}

TEST(Modules, HaveNoHandleThatIsNotTheirs) {
    const auto wrong = reinterpret_cast<HMODULE>(static_cast<INT_PTR>(0x1234));
    EXPECT_EQ(GetProcAddress(wrong, "Answer"), nullptr);
    EXPECT_FALSE(FreeLibrary(wrong));
    EXPECT_FALSE(DisableThreadLibraryCalls(wrong));
    char path[16];
    EXPECT_EQ(GetModuleFileNameA(wrong, path, sizeof path), 0U);
}

}  // namespace
