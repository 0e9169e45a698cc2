// Whom a home trusts. What other users could do is tried as other users, which takes root.
#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <windows.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "platform/core/HomeLock.h"
#include "tests/platform/processes/Peer.h"
#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

using wnplatform::HomeLock;

constexpr uid_t kStranger = 65534;
constexpr uid_t kMember = 61001;
constexpr uid_t kOtherMember = 61002;
constexpr gid_t kGroup = 61100;

struct stat StatusOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(lstat(path.c_str(), &status), 0) << path;
    return status;
}

mode_t ModeOf(const std::string& path) { return StatusOf(path).st_mode & 0777; }

HANDLE OpenFile(const std::string& path, SECURITY_ATTRIBUTES* security = nullptr) {
    return CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, security,
                       OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
}

// A file as the logger makes it.
HANDLE OpenForEveryone(const std::string& path) {
    SECURITY_DESCRIPTOR descriptor;
    InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION);
    SetSecurityDescriptorDacl(&descriptor, TRUE, nullptr, FALSE);
    SECURITY_ATTRIBUTES everyone{sizeof(everyone), &descriptor, TRUE};
    return OpenFile(path, &everyone);
}

LSTATUS SetValue(const char* name) {
    HKEY key;
    const LSTATUS status =
        RegCreateKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Trust", 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr);
    if (status != ERROR_SUCCESS) return status;
    const LSTATUS set = RegSetValueExA(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>("x"), 2);
    RegCloseKey(key);
    return set;
}

// What was expected and did not come true, for the parent's test to print.
class Findings {
public:
    void Expect(bool expectation, const char* text) {
        if (!expectation) m_text += std::string(text) + " (errno " + std::to_string(errno) + ")\n";
    }
    const std::string& Text() const { return m_text; }

private:
    std::string m_text;
};
#define EXPECT_THERE(condition) findings.Expect(condition, #condition)

// A process of another user: runs a function there, and keeps what that has opened until its end.
class OtherUser {
public:
    OtherUser(uid_t user, const std::vector<gid_t>& groups, const std::function<void(Findings&)>& deed) {
        int report[2];
        int end[2];
        EXPECT_TRUE(pipe(report) == 0 && pipe(end) == 0);
        m_process = fork();
        if (m_process == 0) {
            close(end[1]);
            Findings findings;
            umask(022);
            EXPECT_THERE(setgroups(groups.size(), groups.data()) == 0 && setgid(user) == 0 && setuid(user) == 0);
            deed(findings);
            const std::string text = findings.Text() + "\n";
            char byte;
            _exit(write(report[1], text.data(), text.size()) < 0 || read(end[0], &byte, 1) != 0);
        }
        close(report[1]);
        close(end[0]);
        m_end = end[1];
        char buffer[4096];
        const ssize_t length = read(report[0], buffer, sizeof buffer);
        EXPECT_EQ(length > 0 ? std::string(buffer, static_cast<std::size_t>(length)) : "no report", "\n");
        close(report[0]);
    }
    OtherUser(const OtherUser&) = delete;
    OtherUser& operator=(const OtherUser&) = delete;
    ~OtherUser() {
        close(m_end);
        waitpid(m_process, nullptr, 0);
    }

private:
    pid_t m_process;
    int m_end;
};

class Trust : public testing::Test {
protected:
    static void SetHome(mode_t mode, gid_t group = getegid()) {
        EXPECT_EQ(chown(HomePath().c_str(), geteuid(), group), 0);
        EXPECT_EQ(chmod(HomePath().c_str(), mode), 0);
    }
    static std::string Locks() { return InHome("locks"); }
    std::string Outside() const { return m_outside; }

    void SetUp() override { ASSERT_NE(mkdtemp(m_outside.data()), nullptr); }
    void TearDown() override { std::filesystem::remove_all(m_outside); }

private:
    std::string m_outside = (std::filesystem::temp_directory_path() / "wncom-outside-XXXXXX").string();
};

TEST_F(Trust, FollowsTheHomesModeInAllThatIsMade) {
    const struct {
        mode_t home, umask, locks, log, file;
    } cases[] = {
        {0700, 0022, 0700, 0600, 0644}, {0755, 0000, 0700, 0600, 0644}, {0755, 0077, 0700, 0600, 0600},
        {0775, 0077, 0770, 0660, 0660}, {0770, 0022, 0770, 0660, 0664}, {0777, 0027, 0777, 0666, 0666},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(testing::Message() << "home " << std::oct << each.home << ", umask " << each.umask);
        SetHome(each.home);
        const mode_t before = umask(each.umask);
        const HANDLE mutex = CreateMutexA(nullptr, FALSE, "m");
        EXPECT_EQ(ModeOf(Locks()), each.locks);
        EXPECT_EQ(ModeOf(Locks() + "/mutex-m"), each.log);
        CloseHandle(mutex);
        CloseHandle(OpenForEveryone(Outside() + "/log"));
        CloseHandle(OpenForEveryone(InHome("log")));
        CloseHandle(OpenFile(InHome("file")));
        CloseHandle(OpenFile(Outside() + "/file"));
        SetValue("v");
        WritePrivateProfileStringA("a", "b", "c", InHome("x.ini").c_str());
        umask(before);
        EXPECT_EQ(ModeOf(Outside() + "/log"), each.log);
        EXPECT_EQ(ModeOf(InHome("log")), each.log);
        EXPECT_EQ(ModeOf(InHome("file")), each.file);
        EXPECT_EQ(ModeOf(Outside() + "/file"), 0666 & ~each.umask);
        EXPECT_EQ(ModeOf(InHome("registry.reg")), each.file);
        EXPECT_EQ(ModeOf(InHome("x.ini")) & 0022, each.file & 0022);
        // Not the locks: their mode follows.
        for (const char* made : {"log", "file", "registry.reg", "x.ini"}) {
            std::filesystem::remove(InHome(made));
        }
        std::filesystem::remove(Outside() + "/log");
        std::filesystem::remove(Outside() + "/file");
    }
}

TEST_F(Trust, KeepsTheModeOfARegistryThatIsWrittenAgain) {
    for (const mode_t mode : {0600U, 0640U, 0664U}) {
        ASSERT_EQ(SetValue(std::to_string(mode).c_str()), ERROR_SUCCESS);
        chmod(InHome("registry.reg").c_str(), mode);
        ASSERT_EQ(SetValue(("again" + std::to_string(mode)).c_str()), ERROR_SUCCESS);
        EXPECT_EQ(ModeOf(InHome("registry.reg")), mode);
    }
}

TEST_F(Trust, SaysWhatIsWaitedForAndGivesUp) {
    ASSERT_TRUE(HomeLock());
    const int holder = open(Locks().c_str(), O_RDONLY | O_DIRECTORY);
    ASSERT_EQ(flock(holder, LOCK_EX), 0);
    testing::internal::CaptureStderr();
    const HomeLock late({5, 40});
    EXPECT_FALSE(late);
    EXPECT_EQ(late.Error(), DWORD{ERROR_TIMEOUT});
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "wnCOM: waiting for another process of this home to unlock " + Locks() + "\n");

    testing::internal::CaptureStderr();
    std::thread holding([holder] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        close(holder);
    });
    EXPECT_EQ(SetValue("after a wait"), ERROR_SUCCESS);
    holding.join();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

class TrustAmongUsers : public Trust {
protected:
    void SetUp() override {
        if (geteuid() != 0) GTEST_SKIP() << "only root can be other users";
        Trust::SetUp();
    }
};

TEST_F(TrustAmongUsers, NoStrangerReachesLocksMutexesOrFiles) {
    SetHome(0755);
    const HANDLE mutex = CreateMutexA(nullptr, FALSE, "here");
    const HANDLE log = OpenForEveryone(Outside() + "/log");
    chmod(Outside().c_str(), 0755);
    ASSERT_EQ(SetValue("before"), ERROR_SUCCESS);
    const std::string logPath = Outside() + "/log";
    const OtherUser stranger(kStranger, {}, [&](Findings& findings) {
        EXPECT_THERE(open(Locks().c_str(), O_RDONLY) < 0);
        EXPECT_THERE(open((Locks() + "/mutex-here").c_str(), O_RDWR) < 0);
        EXPECT_THERE(truncate((Locks() + "/mutex-here").c_str(), 0) != 0);
        EXPECT_THERE(open((Locks() + "/mutex-later").c_str(), O_RDWR | O_CREAT, 0666) < 0);
        EXPECT_THERE(rename(Locks().c_str(), InHome("gone").c_str()) != 0);
        EXPECT_THERE(open(logPath.c_str(), O_RDONLY) < 0);
        EXPECT_THERE(open(InHome("registry.reg").c_str(), O_RDWR) < 0);
        EXPECT_THERE(!OpenMutexA(SYNCHRONIZE, FALSE, "here") && GetLastError() == ERROR_ACCESS_DENIED);
        EXPECT_THERE(!CreateMutexA(nullptr, FALSE, "later") && GetLastError() == ERROR_ACCESS_DENIED);
        EXPECT_THERE(SetValue("stranger") == ERROR_ACCESS_DENIED);
        // What can be opened for reading can be locked; nothing may depend on it.
        for (const std::string& path : {HomePath(), InHome("registry.reg"), InHome("windows")}) {
            EXPECT_THERE(flock(open(path.c_str(), O_RDONLY), LOCK_EX) == 0);
        }
    });
    EXPECT_EQ(SetValue("during"), ERROR_SUCCESS);
    EXPECT_TRUE(WritePrivateProfileStringA("a", "b", "c", "x.ini"));
    const HANDLE later = CreateMutexA(nullptr, FALSE, "later");
    EXPECT_NE(later, nullptr);
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(ReleaseMutex(mutex));
    EXPECT_TRUE(LockFile(log, 0, 0, 10, 0));
    for (const HANDLE handle : {mutex, later, log}) EXPECT_TRUE(CloseHandle(handle));
}

TEST_F(TrustAmongUsers, AGroupThatMayWriteTheHomeSharesAllOfIt) {
    SetHome(0775, kGroup);
    const std::string file = InHome("shared.db");
    const OtherUser member(kMember, {kGroup}, [&](Findings& findings) {
        EXPECT_THERE(CreateMutexA(nullptr, TRUE, "group") != nullptr);
        EXPECT_THERE(SetValue("member") == ERROR_SUCCESS);
        EXPECT_THERE(WritePrivateProfileStringA("a", "b", "1", "x.ini"));
        EXPECT_THERE(OpenFile(file) != INVALID_HANDLE_VALUE);
    });
    EXPECT_EQ(StatusOf(file).st_gid, kGroup);
    const OtherUser other(kOtherMember, {kGroup}, [&](Findings& findings) {
        const HANDLE mutex = CreateMutexA(nullptr, FALSE, "group");
        EXPECT_THERE(mutex && GetLastError() == ERROR_ALREADY_EXISTS);
        EXPECT_THERE(WaitForSingleObject(mutex, 0) == WAIT_TIMEOUT);
        EXPECT_THERE(SetValue("other") == ERROR_SUCCESS);
        EXPECT_THERE(WritePrivateProfileStringA("a", "c", "2", "x.ini"));
        EXPECT_THERE(OpenFile(file) != INVALID_HANDLE_VALUE);
    });
    EXPECT_EQ(ModeOf(InHome("registry.reg")), 0664U);
    EXPECT_EQ(GetPrivateProfileIntA("a", "b", 0, "x.ini") + GetPrivateProfileIntA("a", "c", 0, "x.ini"), 3U);
    const OtherUser stranger(kStranger, {kStranger}, [&](Findings& findings) {
        EXPECT_THERE(open(Locks().c_str(), O_RDONLY) < 0);
        EXPECT_THERE(open(file.c_str(), O_RDWR) < 0);
        EXPECT_THERE(SetValue("stranger") == ERROR_ACCESS_DENIED);
    });
}

TEST_F(TrustAmongUsers, RootLeavesWhatItMakesToTheHomesOwner) {
    ASSERT_EQ(chown(HomePath().c_str(), kMember, kMember), 0);
    chmod(HomePath().c_str(), 0755);
    CloseHandle(CreateMutexA(nullptr, FALSE, "root"));
    ASSERT_EQ(SetValue("root"), ERROR_SUCCESS);
    chmod(InHome("registry.reg").c_str(), 0600);
    ASSERT_EQ(SetValue("root again"), ERROR_SUCCESS);
    const OtherUser owner(kMember, {}, [](Findings& findings) {
        EXPECT_THERE(CreateMutexA(nullptr, FALSE, "root") != nullptr);
        EXPECT_THERE(SetValue("owner") == ERROR_SUCCESS);
    });
}

TEST_F(TrustAmongUsers, LocksThatAStrangerOwnsAreNotUsed) {
    ASSERT_EQ(chown(HomePath().c_str(), kMember, kMember), 0);
    chmod(HomePath().c_str(), 0755);
    std::filesystem::create_directory(Locks());
    ASSERT_EQ(chown(Locks().c_str(), kStranger, kStranger), 0);
    for (const mode_t mode : {0700U, 0777U}) {
        chmod(Locks().c_str(), mode);
        const OtherUser owner(kMember, {}, [](Findings& findings) {
            EXPECT_THERE(!CreateMutexA(nullptr, FALSE, "m") && GetLastError() == ERROR_ACCESS_DENIED);
            EXPECT_THERE(SetValue("owner") == ERROR_ACCESS_DENIED);
        });
    }
}

}  // namespace
}  // namespace wncom::test
