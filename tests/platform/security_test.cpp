#include <gtest/gtest.h>
#include <windows.h>

namespace wncom::test {
namespace {

TEST(Security, ADescriptorOfTheKnownRevisionTakesAList) {
    SECURITY_DESCRIPTOR descriptor;
    EXPECT_TRUE(InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION));
    EXPECT_TRUE(SetSecurityDescriptorDacl(&descriptor, TRUE, nullptr, FALSE));
}

TEST(Security, OtherRevisionsAreRefused) {
    SECURITY_DESCRIPTOR descriptor{};
    EXPECT_FALSE(InitializeSecurityDescriptor(&descriptor, 2));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_UNKNOWN_REVISION});
    EXPECT_FALSE(SetSecurityDescriptorDacl(&descriptor, TRUE, nullptr, FALSE));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_UNKNOWN_REVISION});
}

}  // namespace
}  // namespace wncom::test
