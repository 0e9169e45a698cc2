// The files that type libraries are loaded from, sound and damaged.
#include <gtest/gtest.h>
#include <link.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "include/wncom/wnCOM.h"
#include "tests/support/TestHome.h"
#include "typelib_text.h"

namespace wncom::test {
namespace {

HRESULT Load(const std::string& file) {
    ITypeLib* library = nullptr;
    const HRESULT hr = LoadTypeLib(Wide(file).c_str(), &library);
    EXPECT_EQ(SUCCEEDED(hr), library != nullptr);
    if (library) library->Release();
    return hr;
}

UINT TypesIn(const std::string& file) {
    const Held<ITypeLib> library = LoadLibraryOf(file);
    return library ? library->GetTypeInfoCount() : 0;
}

std::string ModulePath() { return ProgramFolder() + "/platform_typelib.dll"; }

constexpr const char* kTwoTypes =
    "[uuid(51D1C2B4-8E0F-4C57-9E0B-7E8A0D1B2C40)] library T { importlib(\"stdole2.tlb\");"
    "[uuid(51D1C2B4-8E0F-4C57-9E0B-7E8A0D1B2C41)] interface IA : IUnknown {};"
    "[uuid(51D1C2B4-8E0F-4C57-9E0B-7E8A0D1B2C42)] interface IB : IUnknown {}; };";

TEST(TypeLibraryFile, IsAModuleWithNumberedResources) {
    EXPECT_EQ(TypesIn(ModulePath()), 10U);
    EXPECT_EQ(TypesIn(ModulePath() + "\\1"), 10U);
    EXPECT_EQ(TypesIn(ModulePath() + "\\2"), 1U);
    EXPECT_EQ(Load(ModulePath() + "\\3"), TYPE_E_CANTLOADLIBRARY);
}

TEST(TypeLibraryFile, MayBeADescriptionByItself) {
    const std::string file = HomePath() + "/plain.idl";
    WriteWholeFile(file, kTwoTypes);
    EXPECT_EQ(TypesIn(file), 2U);
    EXPECT_EQ(TypesIn(WNCOM_AGENT_IDL), 10U);
}

TEST(TypeLibraryFile, IsReadAgainOnceItHasChanged) {
    const std::string file = HomePath() + "/changing.idl";
    WriteWholeFile(file, kTwoTypes);
    ASSERT_EQ(TypesIn(file), 2U);
    const Held<ITypeLib> old = LoadLibraryOf(file);
    WriteWholeFile(file, ReadWholeFile(WNCOM_AGENT_IDL));
    EXPECT_EQ(TypesIn(file), 10U);
    EXPECT_EQ(old->GetTypeInfoCount(), 2U);
    std::filesystem::remove(file);
    EXPECT_EQ(Load(file), TYPE_E_CANTLOADLIBRARY);
}

TEST(TypeLibraryFile, IsRefusedWhenItIsSomethingElse) {
    const std::string text = HomePath() + "/text";
    WriteWholeFile(text, "Dear reader,");
    EXPECT_EQ(Load(text), TYPE_E_CANTLOADLIBRARY);
    WriteWholeFile(text, "");
    EXPECT_EQ(Load(text), TYPE_E_CANTLOADLIBRARY);
    EXPECT_EQ(Load(HomePath()), TYPE_E_CANTLOADLIBRARY);
    EXPECT_EQ(Load(HomePath() + "/absent"), TYPE_E_CANTLOADLIBRARY);
    EXPECT_EQ(Load(ProgramFolder() + "/libwnplatform.so"), TYPE_E_CANTLOADLIBRARY);
    EXPECT_EQ(LoadTypeLib(nullptr, nullptr), E_INVALIDARG);
}

TEST(TypeLibraryFile, IsRefusedWhereverItIsCutOff) {
    const std::string whole = ReadWholeFile(ProgramFolder() + "/platform_invoke.dll");
    const std::string file = HomePath() + "/cut.dll";
    // The table of sections stands last, so that no shorter file has one.
    for (std::size_t length = 0; length < whole.size(); length += length < 4096 ? 7 : 997) {
        WriteWholeFile(file, whole.substr(0, length));
        EXPECT_EQ(Load(file), TYPE_E_CANTLOADLIBRARY) << length;
    }
}

TEST(TypeLibraryFile, SurvivesDamageInItsTables) {
    const std::string whole = ReadWholeFile(ProgramFolder() + "/platform_invoke.dll");
    ElfW(Ehdr) header;
    std::memcpy(&header, whole.data(), sizeof(header));
    const std::string file = HomePath() + "/damaged.dll";
    const auto damage = [&](std::size_t at, char value) {
        std::string copy = whole;
        copy[at] = value;
        WriteWholeFile(file, copy);
        ITypeLib* library = nullptr;
        const HRESULT hr = LoadTypeLib(Wide(file).c_str(), &library);
        EXPECT_TRUE(hr == S_OK || hr == TYPE_E_CANTLOADLIBRARY) << at;
        if (library) library->Release();
    };
    for (std::size_t at = 0; at < sizeof(header); ++at) damage(at, '\xFF');
    for (std::size_t at = header.e_shoff; at < whole.size(); at += 3) damage(at, '\x7F');
    for (std::size_t at = header.e_shoff; at < whole.size(); at += 5) damage(at, '\0');
}

TEST(TypeLibraryFile, MayBeNamedAsPathsAreNamedHere) {
    WriteWholeFile(HomePath() + "/drive_c/Libs/Two.idl", kTwoTypes);
    EXPECT_EQ(Load("C:\\libs\\two.idl"), S_OK);
    EXPECT_EQ(Load("C:\\libs\\two.idl\\1"), S_OK);
    EXPECT_EQ(Load("C:\\libs\\two.idl\\2"), TYPE_E_CANTLOADLIBRARY);
}

}  // namespace
}  // namespace wncom::test
