#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <cstdint>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "tests/platform/processes/Peer.h"

namespace wncom::test {
namespace {

TEST(Handles, RefuseWhatIsNoneOrIsClosed) {
    const HANDLE closed = CreateMutexA(nullptr, FALSE, nullptr);
    EXPECT_TRUE(CloseHandle(closed));
    for (const HANDLE handle : {HANDLE{nullptr}, closed, reinterpret_cast<HANDLE>(std::uintptr_t{0x7FFF0004}),
                                reinterpret_cast<HANDLE>(std::uintptr_t{3})}) {
        SetLastError(NO_ERROR);
        EXPECT_FALSE(CloseHandle(handle)) << handle;
        EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
        EXPECT_EQ(WaitForSingleObject(handle, 0), WAIT_FAILED) << handle;
        EXPECT_FALSE(ReleaseMutex(handle)) << handle;
        EXPECT_EQ(GetFileSize(handle, nullptr), INVALID_FILE_SIZE) << handle;
        EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    }
}

TEST(Handles, OfOneSortAreRefusedForAnother) {
    const HANDLE mutex = CreateMutexA(nullptr, FALSE, nullptr);
    DWORD value = 0;
    EXPECT_FALSE(GetExitCodeProcess(mutex, &value));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    EXPECT_EQ(GetFileSize(mutex, nullptr), INVALID_FILE_SIZE);
    EXPECT_TRUE(CloseHandle(mutex));
}

TEST(Handles, AreAllDifferent) {
    std::set<HANDLE> handles;
    for (int i = 0; i < 3000; ++i) handles.insert(CreateMutexA(nullptr, FALSE, nullptr));
    EXPECT_EQ(handles.size(), 3000U);
    for (const HANDLE handle : handles) EXPECT_TRUE(CloseHandle(handle));
}

TEST(Handles, ClosedUnderAnotherThreadsHandsFailThere) {
    const std::string path = InHome("file");
    const auto open = [&path] {
        return CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS, 0, nullptr);
    };
    std::atomic<HANDLE> shared{open()};
    std::atomic<bool> done{false};
    std::vector<std::thread> users;
    for (int i = 0; i < 3; ++i) {
        users.emplace_back([&] {
            while (!done) {
                const DWORD size = GetFileSize(shared, nullptr);
                if (size != 0) {
                    EXPECT_EQ(size, INVALID_FILE_SIZE);
                    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
                }
            }
        });
    }
    for (int i = 0; i < 2000; ++i) EXPECT_TRUE(CloseHandle(shared.exchange(open())));
    done = true;
    for (std::thread& user : users) user.join();
    EXPECT_TRUE(CloseHandle(shared));
}

}  // namespace
}  // namespace wncom::test
