#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "tests/platform/OnWine.h"
#include "tests/platform/processes/Peer.h"

namespace wncom::test {
namespace {

class FileLocks : public testing::Test {
protected:
    static HANDLE Open() {
        return CreateFileA(Path().c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                           OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    }
    static std::string Path() { return InHome("locked.txt"); }

    ~FileLocks() override {
        CloseHandle(m_one);
        CloseHandle(m_other);
    }

    const HANDLE m_one = Open();
    const HANDLE m_other = Open();
};

TEST_F(FileLocks, ExcludeOtherHandlesOfTheProcess) {
    EXPECT_TRUE(LockFile(m_one, 0, 0, 10, 0));
    EXPECT_FALSE(LockFile(m_other, 9, 0, 1, 0));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_LOCK_VIOLATION});
    EXPECT_TRUE(LockFile(m_other, 10, 0, 1, 0));
    EXPECT_TRUE(UnlockFile(m_one, 0, 0, 10, 0));
    EXPECT_TRUE(LockFile(m_other, 0, 0, 10, 0));
}

TEST_F(FileLocks, ExcludeASecondLockOfTheSameHandle) {
    EXPECT_TRUE(LockFile(m_one, 0, 0, 10, 0));
    EXPECT_FALSE(LockFile(m_one, 5, 0, 10, 0));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_LOCK_VIOLATION});
}

TEST_F(FileLocks, AreGivenBackAsTheyWereTaken) {
    // Wine takes what is not locked for a conflict.
    const DWORD notLocked = OnWine() ? DWORD{ERROR_LOCK_VIOLATION} : DWORD{ERROR_NOT_LOCKED};
    EXPECT_TRUE(LockFile(m_one, 0, 0, 10, 0));
    EXPECT_FALSE(UnlockFile(m_one, 0, 0, 5, 0));
    EXPECT_EQ(GetLastError(), notLocked);
    EXPECT_FALSE(UnlockFile(m_other, 0, 0, 10, 0));
    EXPECT_EQ(GetLastError(), notLocked);
    EXPECT_FALSE(LockFile(m_other, 0, 0, 5, 0));
}

TEST_F(FileLocks, ReachBeyondTheFile) {
    EXPECT_TRUE(LockFile(m_one, 0, 0, 0xFFFFFFFF, 0xFFFFFFFF));
    EXPECT_FALSE(LockFile(m_other, 0, 0x1000, 1, 0));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_LOCK_VIOLATION});
    EXPECT_TRUE(UnlockFile(m_one, 0, 0, 0xFFFFFFFF, 0xFFFFFFFF));
    EXPECT_TRUE(LockFile(m_other, 0, 0x1000, 1, 0));
}

TEST_F(FileLocks, EndWithTheHandle) {
    const HANDLE third = Open();
    EXPECT_TRUE(LockFile(third, 0, 0, 10, 0));
    EXPECT_FALSE(LockFile(m_other, 0, 0, 10, 0));
    CloseHandle(third);
    EXPECT_TRUE(LockFile(m_other, 0, 0, 10, 0));
}

TEST_F(FileLocks, ExcludeOtherProcessesUntilTheyEnd) {
    const std::string ready = InHome("ready");
    Peer peer("lock \"" + Path() + "\" \"" + ready + "\"");
    AwaitFile(ready);
    EXPECT_FALSE(LockFile(m_one, 5, 0, 1, 0));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_LOCK_VIOLATION});
    peer.Kill();
    EXPECT_TRUE(LockFile(m_one, 5, 0, 1, 0));
}

}  // namespace
}  // namespace wncom::test
