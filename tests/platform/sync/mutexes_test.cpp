#include <gtest/gtest.h>
#include <windows.h>

#include <chrono>
#include <string>
#include <thread>

#include "tests/platform/processes/Peer.h"
#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

// A name of the test's own: on a host that is shared, homes may share names.
std::string Name() { return "wncom test " + HomePath().substr(HomePath().size() - 6); }

HANDLE Create(const std::string& name, BOOL owned = FALSE) {
    SetLastError(4711);
    return CreateMutexA(nullptr, owned, name.c_str());
}

HANDLE OpenByName(const std::string& name) { return OpenMutexA(MUTEX_ALL_ACCESS, FALSE, name.c_str()); }

// What another thread gets from a wait.
DWORD WaitElsewhere(HANDLE mutex, DWORD milliseconds) {
    DWORD result = 0;
    std::thread([&] {
        result = WaitForSingleObject(mutex, milliseconds);
        if (result == WAIT_OBJECT_0 || result == WAIT_ABANDONED) ReleaseMutex(mutex);
    }).join();
    return result;
}

TEST(Mutexes, TellWhetherTheNameExisted) {
    const HANDLE first = Create(Name());
    EXPECT_EQ(GetLastError(), DWORD{NO_ERROR});
    const HANDLE second = Create(Name());
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ALREADY_EXISTS});
    EXPECT_TRUE(CloseHandle(first));
    const HANDLE third = Create(Name());
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ALREADY_EXISTS});
    EXPECT_TRUE(CloseHandle(second));
    EXPECT_TRUE(CloseHandle(third));
    EXPECT_EQ(OpenByName(Name()), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
}

TEST(Mutexes, AreOneUnderOneNameAndOthersUnderOthers) {
    const HANDLE created = Create(Name(), TRUE);
    const HANDLE opened = OpenByName(Name());
    const HANDLE local = OpenByName("Local\\" + Name());
    const HANDLE other = Create(Name() + "x");
    EXPECT_EQ(WaitElsewhere(opened, 0), WAIT_TIMEOUT);
    EXPECT_EQ(WaitElsewhere(local, 0), WAIT_TIMEOUT);
    EXPECT_EQ(WaitElsewhere(other, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(ReleaseMutex(local));
    EXPECT_EQ(WaitElsewhere(opened, 0), WAIT_OBJECT_0);
    for (const HANDLE handle : {created, opened, local, other}) EXPECT_TRUE(CloseHandle(handle));
}

TEST(Mutexes, RefuseNamesThatAreNone) {
    EXPECT_EQ(Create("no\\such\\folder"), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PATH_NOT_FOUND});
    EXPECT_EQ(Create(std::string(2 * MAX_PATH, 'x')), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILENAME_EXCED_RANGE});
    EXPECT_EQ(OpenMutexA(SYNCHRONIZE, FALSE, nullptr), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
}

TEST(Mutexes, KeepLongNamesApart) {
    const std::string name = Name() + std::string(200, '*');
    const HANDLE one = Create(name + "1", TRUE);
    const HANDLE two = Create(name + "2");
    EXPECT_EQ(GetLastError(), DWORD{NO_ERROR});
    EXPECT_EQ(WaitElsewhere(two, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(CloseHandle(two));
    EXPECT_TRUE(ReleaseMutex(one));
    EXPECT_TRUE(CloseHandle(one));
}

TEST(Mutexes, WithoutANameAreEachTheirOwn) {
    const HANDLE one = CreateMutexA(nullptr, TRUE, nullptr);
    const HANDLE two = CreateMutexA(nullptr, FALSE, nullptr);
    EXPECT_EQ(WaitElsewhere(one, 0), WAIT_TIMEOUT);
    EXPECT_EQ(WaitElsewhere(two, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(ReleaseMutex(one));
    EXPECT_TRUE(CloseHandle(one));
    EXPECT_TRUE(CloseHandle(two));
}

TEST(Mutexes, AreReleasedAsOftenAsTheyWereTaken) {
    const HANDLE mutex = Create(Name(), TRUE);
    EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(ReleaseMutex(mutex));
    EXPECT_TRUE(ReleaseMutex(mutex));
    EXPECT_EQ(WaitElsewhere(mutex, 0), WAIT_TIMEOUT);
    EXPECT_TRUE(ReleaseMutex(mutex));
    EXPECT_EQ(WaitElsewhere(mutex, 0), WAIT_OBJECT_0);
    EXPECT_FALSE(ReleaseMutex(mutex));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NOT_OWNER});
    EXPECT_TRUE(CloseHandle(mutex));
}

TEST(Mutexes, AreReleasedByTheirOwnerOnly) {
    const HANDLE mutex = Create(Name(), TRUE);
    std::thread([mutex] {
        EXPECT_FALSE(ReleaseMutex(mutex));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_NOT_OWNER});
    }).join();
    EXPECT_EQ(WaitElsewhere(mutex, 0), WAIT_TIMEOUT);
    EXPECT_TRUE(ReleaseMutex(mutex));
    EXPECT_TRUE(CloseHandle(mutex));
}

TEST(Mutexes, AreWaitedForUpToTheTimeGiven) {
    const HANDLE mutex = Create(Name(), TRUE);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(WaitElsewhere(mutex, 50), WAIT_TIMEOUT);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(45));
    std::thread waiter([mutex] {
        EXPECT_EQ(WaitForSingleObject(mutex, 60'000), WAIT_OBJECT_0);
        EXPECT_TRUE(ReleaseMutex(mutex));
    });
    Sleep(20);
    EXPECT_TRUE(ReleaseMutex(mutex));
    waiter.join();
    EXPECT_TRUE(CloseHandle(mutex));
}

TEST(Mutexes, TellTheNextOwnerThatAThreadEndedWithThem) {
    for (const HANDLE mutex : {Create(Name()), CreateMutexA(nullptr, FALSE, nullptr)}) {
        std::thread([mutex] { WaitForSingleObject(mutex, INFINITE); }).join();
        EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_ABANDONED);
        EXPECT_TRUE(ReleaseMutex(mutex));
        EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
        EXPECT_TRUE(ReleaseMutex(mutex));
        EXPECT_TRUE(CloseHandle(mutex));
    }
}

TEST(Mutexes, ClosedByTheirOwnerLeaveItsOtherMutexesSound) {
    const HANDLE kept = Create(Name() + "kept");
    std::thread([kept] {
        WaitForSingleObject(kept, INFINITE);
        EXPECT_TRUE(CloseHandle(Create(Name(), TRUE)));
        EXPECT_TRUE(CloseHandle(CreateMutexA(nullptr, TRUE, nullptr)));
    }).join();
    EXPECT_EQ(WaitForSingleObject(kept, 0), WAIT_ABANDONED);
    EXPECT_TRUE(ReleaseMutex(kept));
    EXPECT_TRUE(CloseHandle(kept));
    const HANDLE again = Create(Name());
    EXPECT_EQ(GetLastError(), DWORD{NO_ERROR});
    EXPECT_EQ(WaitForSingleObject(again, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(ReleaseMutex(again));
    EXPECT_TRUE(CloseHandle(again));
}

TEST(Mutexes, OfAKilledProcessAreAbandoned) {
    const std::string ready = InHome("ready");
    const HANDLE mutex = Create(Name());
    Peer owner("own \"" + Name() + "\" \"" + ready + "\" 60000");
    AwaitFile(ready);
    EXPECT_EQ(WaitForSingleObject(mutex, 20), WAIT_TIMEOUT);
    std::thread killer([&owner] {
        Sleep(50);
        owner.Kill();
    });
    EXPECT_EQ(WaitForSingleObject(mutex, 60'000), WAIT_ABANDONED);
    killer.join();
    EXPECT_TRUE(ReleaseMutex(mutex));
    EXPECT_TRUE(CloseHandle(mutex));
}

TEST(Mutexes, OfAProcessThatEndedWithoutReleaseAreAbandoned) {
    const HANDLE mutex = Create(Name());
    Peer owner("own \"" + Name() + "\" \"" + InHome("ready") + "\" 0");
    EXPECT_EQ(owner.Result(), 0U);
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_ABANDONED);
    EXPECT_TRUE(ReleaseMutex(mutex));
    EXPECT_TRUE(CloseHandle(mutex));
}

TEST(Mutexes, GoWithTheLastProcessThatHeldThemOpen) {
    const std::string ready = InHome("ready");
    Peer owner("own \"" + Name() + "\" \"" + ready + "\" 60000");
    AwaitFile(ready);
    const HANDLE opened = OpenByName(Name());
    EXPECT_NE(opened, nullptr);
    EXPECT_TRUE(CloseHandle(opened));
    owner.Kill();
    EXPECT_EQ(OpenByName(Name()), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
    const HANDLE created = Create(Name(), TRUE);
    EXPECT_EQ(GetLastError(), DWORD{NO_ERROR});
    EXPECT_TRUE(ReleaseMutex(created));
    EXPECT_TRUE(CloseHandle(created));
}

TEST(Mutexes, LetOneProcessInAtATime) {
    const std::string path = InHome("count");
    const HANDLE mutex = Create(Name());
    {
        const std::string deed = "count \"" + Name() + "\" \"" + path + "\" 5000";
        Peer one(deed);
        Peer two(deed);
        EXPECT_EQ(one.Result(), 0U);
        EXPECT_EQ(two.Result(), 0U);
    }
    EXPECT_TRUE(CloseHandle(mutex));
    EXPECT_EQ(ReadWholeFile(path), std::string("\x10\x27\0\0", 4));
}

TEST(Mutexes, AreOneAlsoWhenProcessesMakeAndCloseThemAllTheTime) {
    const std::string deed = "make \"" + Name() + "\" \"" + InHome("locked") + "\" 300";
    Peer one(deed);
    Peer two(deed);
    Peer three(deed);
    for (Peer* peer : {&one, &two, &three}) EXPECT_EQ(peer->Result(), 0U);
}

}  // namespace
}  // namespace wncom::test
