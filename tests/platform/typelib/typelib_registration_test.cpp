// Type libraries in the registry.
#include <gtest/gtest.h>

#include "include/wncom/wnCOM.h"
#include "tests/platform/OnWine.h"
#include "tests/support/TestHome.h"
#include "typelib_text.h"

namespace wncom::test {
namespace {

constexpr const char* kLibraryKey = "TypeLib\\{8B2E860F-324B-4F38-B0BE-9D642317C24B}";

// The default value of a key of HKEY_CLASSES_ROOT, or "absent".
std::string ClassesText(const std::string& key) {
    HKEY open = nullptr;
    if (RegOpenKeyExA(HKEY_CLASSES_ROOT, key.c_str(), 0, KEY_READ, &open) != ERROR_SUCCESS) return "absent";
    char text[512] = {};
    DWORD size = sizeof(text) - 1;
    const LSTATUS status = RegQueryValueExA(open, nullptr, nullptr, nullptr, reinterpret_cast<BYTE*>(text), &size);
    RegCloseKey(open);
    return status == ERROR_SUCCESS ? text : "no value";
}

class TypeLibraryRegistration : public testing::Test {
protected:
    void SetUp() override {
        m_library = LoadLibraryOf("platform_typelib.dll");
        ASSERT_TRUE(m_library);
        TLIBATTR* attributes = nullptr;
        ASSERT_EQ(m_library->GetLibAttr(&attributes), S_OK);
        m_system = attributes->syskind;
        m_library->ReleaseTLibAttr(attributes);
    }
    void TearDown() override { RegDeleteTreeA(HKEY_CLASSES_ROOT, kLibraryKey); }

    HRESULT Register() { return RegisterTypeLib(m_library.get(), Wide(m_path).data(), nullptr); }
    HRESULT Unregister() { return UnRegisterTypeLib(LIBID_WNCOMLib, 1, 0, 0x409, m_system); }
    // The key of its path in the system's own kind of process.
    std::string PathKey() const {
        return std::string(kLibraryKey) + (m_system == SYS_WIN64 ? "\\1.0\\409\\win64" : "\\1.0\\409\\win32");
    }
    static HRESULT Load(WORD major, WORD minor, LCID locale = 0x409) {
        ITypeLib* library = nullptr;
        const HRESULT hr = LoadRegTypeLib(LIBID_WNCOMLib, major, minor, locale, &library);
        if (library) library->Release();
        return hr;
    }

    std::string m_path = ProgramFolder() + "/platform_typelib.dll";
    Held<ITypeLib> m_library;
    SYSKIND m_system = SYS_WIN32;
};

TEST_F(TypeLibraryRegistration, WritesItsEntriesAndIsFoundByThem) {
    EXPECT_EQ(Load(1, 0), TYPE_E_LIBNOTREGISTERED);
    ASSERT_EQ(Register(), S_OK);
    const std::string version = std::string(kLibraryKey) + "\\1.0";
    EXPECT_EQ(ClassesText(version), "wnCOM 1.0 Type Library");
    EXPECT_EQ(ClassesText(PathKey()), m_path);
    // Wine adds that the library lies in a file.
    EXPECT_EQ(ClassesText(version + "\\FLAGS"), OnWine() ? "8" : "0");
    EXPECT_NE(ClassesText(version + "\\HELPDIR"), "absent");
    EXPECT_EQ(Load(1, 0), S_OK);
}

TEST_F(TypeLibraryRegistration, AnswersToItsOwnMajorVersionOnly) {
    ASSERT_EQ(Register(), S_OK);
    EXPECT_EQ(Load(1, 1), TYPE_E_LIBNOTREGISTERED);
    EXPECT_EQ(Load(2, 0), TYPE_E_LIBNOTREGISTERED);
    EXPECT_EQ(Load(0xFFFF, 0xFFFF), S_OK);
}

TEST_F(TypeLibraryRegistration, AnswersToItsOwnLocaleOnly) {
    ASSERT_EQ(Register(), S_OK);
    EXPECT_EQ(Load(1, 0, 0), TYPE_E_LIBNOTREGISTERED);
    EXPECT_EQ(Load(1, 0, 0x407), TYPE_E_LIBNOTREGISTERED);
}

TEST_F(TypeLibraryRegistration, RemovesItsEntriesAndEmptyParents) {
    ASSERT_EQ(Register(), S_OK);
    ASSERT_EQ(Unregister(), S_OK);
    EXPECT_EQ(ClassesText(kLibraryKey), "absent");
    EXPECT_NE(ClassesText("TypeLib"), "absent");
    // Wine says E_INVALIDARG.
    EXPECT_EQ(Unregister(), OnWine() ? E_INVALIDARG : TYPE_E_REGISTRYACCESS);
}

TEST_F(TypeLibraryRegistration, KeepsOtherVersionsWhenOneIsRemoved) {
    ASSERT_EQ(Register(), S_OK);
    HKEY other = nullptr;
    ASSERT_EQ(RegCreateKeyExA(HKEY_CLASSES_ROOT, (std::string(kLibraryKey) + "\\2.0").c_str(), 0, nullptr, 0,
                              KEY_WRITE, nullptr, &other, nullptr),
              ERROR_SUCCESS);
    RegCloseKey(other);
    ASSERT_EQ(Unregister(), S_OK);
    EXPECT_EQ(ClassesText(std::string(kLibraryKey) + "\\1.0"), "absent");
    EXPECT_EQ(ClassesText(std::string(kLibraryKey) + "\\2.0"), "no value");
}

TEST_F(TypeLibraryRegistration, SaysThatARegisteredFileIsNoLibrary) {
    m_path = HomePath() + "/absent.dll";
    ASSERT_EQ(Register(), S_OK);
    EXPECT_EQ(Load(1, 0), TYPE_E_CANTLOADLIBRARY);
}

}  // namespace
}  // namespace wncom::test
