// Type libraries in the registry that are files by themselves. Windows reads none of these.
#include <gtest/gtest.h>

#include "include/wncom/wnCOM.h"
#include "tests/support/TestHome.h"
#include "typelib_text.h"

namespace wncom::test {
namespace {

HRESULT Load(WORD major, WORD minor, LCID locale) {
    ITypeLib* library = nullptr;
    const HRESULT hr = LoadRegTypeLib(LIBID_WNCOMLib, major, minor, locale, &library);
    if (library) library->Release();
    return hr;
}

TEST(TypeLibraryRegistrationOnLinux, StandsInForEarlierMinorVersionsAndEveryLocale) {
    const std::string file = HomePath() + "/later.idl";
    WriteWholeFile(file, "[uuid(8B2E860F-324B-4F38-B0BE-9D642317C24B), version(1.11)] library Later {};");
    const Held<ITypeLib> later = LoadLibraryOf(file);
    ASSERT_EQ(RegisterTypeLib(later.get(), Wide(file).c_str(), nullptr), S_OK);
    EXPECT_TRUE(RegistryKeyExists(HKEY_CLASSES_ROOT, "TypeLib\\{8B2E860F-324B-4F38-B0BE-9D642317C24B}\\1.b"));
    EXPECT_EQ(Load(1, 3, 0x409), S_OK);
    // It has no locale of its own.
    EXPECT_EQ(Load(1, 3, 0x407), S_OK);
}

}  // namespace
}  // namespace wncom::test
