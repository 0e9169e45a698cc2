// A system whose component creation throws, as one does that hands a component's own exceptions through.
#include <gtest/gtest.h>

#include <string>

#include "common/OpenKey.h"
#include "tests/common/SampleComponent.h"
#include "tests/support/LogCapture.h"
#include "wncom/CPComPtr.h"

namespace {

DWORD g_context = 0;

}  // namespace

// Stands in for the system's own in this program.
HRESULT CoCreateInstance(REFCLSID, IUnknown*, DWORD context, REFIID, LPVOID* object) {
    g_context = context;
    *object = &g_context;  // nothing that could be released
    throw 7;
}

namespace wncom::test {
namespace {

TEST(CreateComponent, ForgetsWhatAThrowingCreationLeftBehind) {
    OpenKey key;
    ASSERT_EQ(key.Create(HKEY_CLASSES_ROOT, (std::string(kSampleProgId) + "\\CLSID").c_str()), ERROR_SUCCESS);
    key.WriteText(nullptr, kSampleClassText);
    const LogCapture log;
    CPComPtr<ISample> component;
    EXPECT_EQ(component.CreateInstance(kSampleProgIdWide), E_FAIL);
    EXPECT_FALSE(component);
    EXPECT_EQ(g_context, 7u);
    EXPECT_TRUE(ContainsInOrder(log.Lines(), {"1 CI 5", "1 PlatformServices::CreateInstance() caught exception.",
                                              "1 PlatformServices::CreateInstance() returning FAIL."}));
}

}  // namespace
}  // namespace wncom::test
