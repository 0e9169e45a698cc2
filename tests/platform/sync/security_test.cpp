#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "tests/platform/processes/Peer.h"
#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

TEST(Security, ADescriptorOfTheKnownRevisionTakesAList) {
    SECURITY_DESCRIPTOR descriptor;
    EXPECT_TRUE(InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION));
    EXPECT_TRUE(SetSecurityDescriptorDacl(&descriptor, TRUE, nullptr, FALSE));
}

TEST(Security, WhatIsOpenToEveryoneIsOpenedByOtherProcesses) {
    SECURITY_DESCRIPTOR descriptor;
    ASSERT_TRUE(InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION));
    ASSERT_TRUE(SetSecurityDescriptorDacl(&descriptor, TRUE, nullptr, FALSE));
    SECURITY_ATTRIBUTES everyone{sizeof(SECURITY_ATTRIBUTES), &descriptor, FALSE};
    const std::string path = InHome("shared.txt");
    const std::string name = "wncom test " + HomePath().substr(HomePath().size() - 6);
    const HANDLE mutex = CreateMutexA(&everyone, FALSE, name.c_str());
    const HANDLE file = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, &everyone,
                                    OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    Peer peer("open \"" + name + "\" \"" + path + "\"");
    EXPECT_EQ(peer.Result(), 0U);
    EXPECT_EQ(GetFileSize(file, nullptr), 1U);
    EXPECT_TRUE(CloseHandle(file));
    EXPECT_TRUE(CloseHandle(mutex));
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
