// The files that type libraries are loaded from, sound and damaged, and calls that only this host survives.
#include <gtest/gtest.h>
#include <link.h>

#include <cstring>

#include "invoke_target.h"
#include "platform/typelib/idl/Description.h"
#include "tests/support/TestHome.h"
#include "typelib_text.h"

namespace wncom::test {
namespace {

using wnplatform::typelib::Read;

HRESULT Load(const std::string& file) {
    ITypeLib* library = nullptr;
    const HRESULT hr = LoadTypeLib(Wide(file).c_str(), &library);
    EXPECT_EQ(SUCCEEDED(hr), library != nullptr);
    // Whatever is given can be read from end to end.
    if (library) LibraryText(*Held<ITypeLib>(library));
    return hr;
}

HRESULT LoadBytes(const std::string& bytes) {
    const std::string file = HomePath() + "/drive_c/Libs/Some.tlb";
    WriteWholeFile(file, bytes);
    return Load("C:\\libs\\some.tlb");
}

std::string AgentBlob() { return Read(ReadWholeFile(WNCOM_AGENT_IDL)).Blob(); }

TEST(TypeLibraryFile, MayHoldTheTablesAlone) {
    const std::string file = HomePath() + "/alone.tlb";
    WriteWholeFile(file, AgentBlob());
    const Held<ITypeLib> alone = LoadLibraryOf(file);
    ASSERT_TRUE(alone);
    EXPECT_EQ(LibraryText(*alone), LibraryText(*LoadLibraryOf("platform_typelib.dll")));
    EXPECT_EQ(LoadBytes(AgentBlob()), S_OK);
}

TEST(TypeLibraryFile, IsRefusedWhenItIsSomethingElse) {
    EXPECT_EQ(LoadBytes("Dear reader,"), TYPE_E_CANTLOADLIBRARY);
    EXPECT_EQ(LoadBytes(""), TYPE_E_CANTLOADLIBRARY);
    EXPECT_EQ(Load(HomePath()), TYPE_E_CANTLOADLIBRARY);
    EXPECT_EQ(Load(HomePath() + "/absent"), TYPE_E_CANTLOADLIBRARY);
    EXPECT_EQ(Load(ProgramFolder() + "/libwnplatform.so"), TYPE_E_CANTLOADLIBRARY);
    EXPECT_EQ(LoadTypeLib(nullptr, nullptr), E_INVALIDARG);
}

TEST(TypeLibraryFile, OfAnotherVersionOrLengthIsRefused) {
    const std::string blob = AgentBlob();
    std::string other = blob;
    ++other[8];
    EXPECT_EQ(LoadBytes(other), TYPE_E_CANTLOADLIBRARY);
    EXPECT_EQ(LoadBytes(blob + '\0'), TYPE_E_CANTLOADLIBRARY);
    for (std::size_t length = 0; length < blob.size(); length += 13) {
        ASSERT_EQ(LoadBytes(blob.substr(0, length)), TYPE_E_CANTLOADLIBRARY) << length;
    }
}

TEST(TypeLibraryFile, MayHoldAnyNumberInAnyPlace) {
    const std::string blob = AgentBlob();
    int refused = 0;
    for (const std::uint32_t number : {1U, 0xFFFFU, 0xFFFFFFFFU}) {
        for (std::size_t at = 0; at + sizeof(number) <= blob.find("stdole"); at += sizeof(number)) {
            std::string damaged = blob;
            std::memcpy(&damaged[at], &number, sizeof(number));
            if (LoadBytes(damaged) != S_OK) ++refused;
        }
    }
    EXPECT_GT(refused, 100);
}

TEST(TypeLibraryFile, MayBeADamagedModule) {
    const std::string whole = ReadWholeFile(ProgramFolder() + "/platform_invoke.dll");
    ElfW(Ehdr) header;
    std::memcpy(&header, whole.data(), sizeof(header));
    // The table of sections stands last, so that no shorter file has one.
    for (std::size_t length = 0; length < whole.size(); length += length < 4096 ? 97 : 997) {
        EXPECT_EQ(LoadBytes(whole.substr(0, length)), TYPE_E_CANTLOADLIBRARY) << length;
    }
    const auto damage = [&](std::size_t at, char value) {
        std::string copy = whole;
        copy[at] = value;
        const HRESULT hr = LoadBytes(copy);
        EXPECT_TRUE(hr == S_OK || hr == TYPE_E_CANTLOADLIBRARY) << at;
    };
    for (std::size_t at = 0; at < sizeof(header); ++at) damage(at, '\xFF');
    for (std::size_t at = header.e_shoff; at < whole.size(); at += 7) damage(at, '\x7F');
}

// On Windows none passes the system.
TEST(TypeLibraryCall, KeepsAnExceptionFromTheCaller) {
    ITypeInfo* info = nullptr;
    ASSERT_EQ(LoadLibraryOf("platform_invoke.dll")->GetTypeInfoOfGuid(ITarget::kIid, &info), S_OK);
    Target target;
    ITarget* instance = &target;
    DISPPARAMS none{};
    EXCEPINFO exception{};
    EXPECT_EQ(Held<ITypeInfo>(info)->Invoke(instance, 6, DISPATCH_METHOD, &none, nullptr, &exception, nullptr),
              DISP_E_EXCEPTION);
    EXPECT_EQ(exception.scode, E_UNEXPECTED);
}

TEST(TypeLibraryRegistrationOnLinux, StandsInForEarlierMinorVersionsAndEveryLocale) {
    const std::string file = HomePath() + "/later.tlb";
    WriteWholeFile(file,
                   Read("[uuid(8B2E860F-324B-4F38-B0BE-9D642317C24B), version(1.11)] library Later {};").Blob());
    const Held<ITypeLib> later = LoadLibraryOf(file);
    const GUID id = {0x8B2E860F, 0x324B, 0x4F38, {0xB0, 0xBE, 0x9D, 0x64, 0x23, 0x17, 0xC2, 0x4B}};
    ASSERT_EQ(RegisterTypeLib(later.get(), Wide(file).c_str(), nullptr), S_OK);
    EXPECT_TRUE(RegistryKeyExists(HKEY_CLASSES_ROOT, "TypeLib\\{8B2E860F-324B-4F38-B0BE-9D642317C24B}\\1.b"));
    // It has no locale of its own.
    for (const LCID locale : {0x409U, 0x407U}) {
        ITypeLib* library = nullptr;
        EXPECT_EQ(LoadRegTypeLib(id, 1, 3, locale, &library), S_OK);
        if (library) library->Release();
    }
}

}  // namespace
}  // namespace wncom::test
