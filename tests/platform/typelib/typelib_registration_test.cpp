// Type libraries in the registry.
#include <gtest/gtest.h>

#include "include/wncom/wnCOM.h"
#include "tests/platform/OnWine.h"
#include "tests/support/TestHome.h"
#include "typelib_text.h"

namespace wncom::test {
namespace {

constexpr const char* kLibraryKey = "TypeLib\\{8B2E860F-324B-4F38-B0BE-9D642317C24B}";

class TypeLibraryRegistration : public testing::Test {
protected:
    void SetUp() override {
        TLIBATTR* attributes = nullptr;
        ASSERT_EQ(m_library->GetLibAttr(&attributes), S_OK);
        m_system = attributes->syskind;
        m_library->ReleaseTLibAttr(attributes);
    }
    void TearDown() override { RegDeleteTreeA(HKEY_CLASSES_ROOT, kLibraryKey); }

    HRESULT Register(const std::string& path) { return RegisterTypeLib(m_library.get(), Wide(path).data(), nullptr); }
    HRESULT Unregister() { return UnRegisterTypeLib(LIBID_WNCOMLib, 1, 0, 0x409, m_system); }
    static HRESULT Load(WORD major, WORD minor, LCID locale = 0x409) {
        ITypeLib* library = nullptr;
        const HRESULT hr = LoadRegTypeLib(LIBID_WNCOMLib, major, minor, locale, &library);
        if (library) library->Release();
        return hr;
    }

    const std::string m_path = ProgramFolder() + "/platform_typelib.dll";
    const std::string m_version = std::string(kLibraryKey) + "\\1.0";
    const Held<ITypeLib> m_library = LoadLibraryOf("platform_typelib.dll");
    SYSKIND m_system = SYS_WIN32;
};

TEST_F(TypeLibraryRegistration, WritesItsEntriesAndIsFoundByThem) {
    EXPECT_EQ(Load(1, 0), TYPE_E_LIBNOTREGISTERED);
    ASSERT_EQ(Register(m_path), S_OK);
    const auto value = [&](const std::string& key) {
        return RegistryValue(HKEY_CLASSES_ROOT, m_version + key, nullptr);
    };
    EXPECT_EQ(value(""), "wnCOM 1.0 Type Library");
    // The key of the path is named for the system's own kind of process.
    EXPECT_EQ(value(m_system == SYS_WIN64 ? "\\409\\win64" : "\\409\\win32"), m_path);
    // Wine adds that the library lies in a file.
    EXPECT_EQ(value("\\FLAGS"), OnWine() ? "8" : "0");
    EXPECT_NE(value("\\HELPDIR"), "(absent)");

    EXPECT_EQ(Load(1, 0), S_OK);
    EXPECT_EQ(Load(0xFFFF, 0xFFFF), S_OK);
    // Its own versions and locale only.
    EXPECT_EQ(Load(1, 1), TYPE_E_LIBNOTREGISTERED);
    EXPECT_EQ(Load(2, 0), TYPE_E_LIBNOTREGISTERED);
    EXPECT_EQ(Load(1, 0, 0), TYPE_E_LIBNOTREGISTERED);
    EXPECT_EQ(Load(1, 0, 0x407), TYPE_E_LIBNOTREGISTERED);

    ASSERT_EQ(Register(HomePath() + "/absent.dll"), S_OK);
    EXPECT_EQ(Load(1, 0), TYPE_E_CANTLOADLIBRARY);
}

TEST_F(TypeLibraryRegistration, RemovesItsEntriesAndParentsThatAreEmpty) {
    ASSERT_EQ(Register(m_path), S_OK);
    const std::string other = std::string(kLibraryKey) + "\\2.0";
    HKEY made = nullptr;
    ASSERT_EQ(RegCreateKeyExA(HKEY_CLASSES_ROOT, other.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &made, nullptr),
              ERROR_SUCCESS);
    RegCloseKey(made);
    ASSERT_EQ(Unregister(), S_OK);
    EXPECT_FALSE(RegistryKeyExists(HKEY_CLASSES_ROOT, m_version));
    EXPECT_TRUE(RegistryKeyExists(HKEY_CLASSES_ROOT, other));
    // Wine says E_INVALIDARG.
    EXPECT_EQ(Unregister(), OnWine() ? E_INVALIDARG : TYPE_E_REGISTRYACCESS);

    RegDeleteTreeA(HKEY_CLASSES_ROOT, kLibraryKey);
    ASSERT_EQ(Register(m_path), S_OK);
    ASSERT_EQ(Unregister(), S_OK);
    EXPECT_FALSE(RegistryKeyExists(HKEY_CLASSES_ROOT, kLibraryKey));
    EXPECT_TRUE(RegistryKeyExists(HKEY_CLASSES_ROOT, "TypeLib"));
}

}  // namespace
}  // namespace wncom::test
