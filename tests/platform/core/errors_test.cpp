#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <cstring>
#include <string>
#include <thread>

namespace {

DWORD Format(DWORD code, std::string& text) {
    char* made = nullptr;
    constexpr DWORD flags =
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    const DWORD length = FormatMessageA(flags, nullptr, code, MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT),
                                        reinterpret_cast<LPSTR>(&made), 0, nullptr);
    text = made ? made : "";
    EXPECT_EQ(LocalFree(made), nullptr);
    return length;
}

TEST(Errors, BelongToOneThread) {
    std::atomic<bool> set{false};
    std::atomic<bool> seen{false};
    std::thread other([&] {
        SetLastError(7);
        set = true;
        while (!seen) continue;
        EXPECT_EQ(GetLastError(), 7U);
    });
    SetLastError(5);
    // Without a call in between, which could set it: so no waiting either.
    while (!set) continue;
    EXPECT_EQ(GetLastError(), 5U);
    SetLastError(5);
    seen = true;
    other.join();
}

TEST(Errors, HaveATextThatEndsItsLine) {
    std::string text;
    const DWORD length = Format(ERROR_MOD_NOT_FOUND, text);
    EXPECT_EQ(length, text.size());
    EXPECT_GT(length, 2U);
    EXPECT_TRUE(text.ends_with("\r\n"));
}

TEST(Errors, AreTheSameAsAStatus) {
    std::string plain, status;
    Format(ERROR_ACCESS_DENIED, plain);
    Format(static_cast<DWORD>(E_ACCESSDENIED), status);
    EXPECT_EQ(plain, status);
}

TEST(Errors, OfUnknownNumberHaveNoText) {
    std::string text;
    EXPECT_EQ(Format(0x2BADBEEF, text), 0U);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_MR_MID_NOT_FOUND});
    EXPECT_EQ(text, "");
}

TEST(Errors, NeedRoomForTheirText) {
    char small[4];
    constexpr DWORD flags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    EXPECT_EQ(FormatMessageA(flags, nullptr, 2, 0, small, sizeof small, nullptr), 0U);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
    char large[512];
    const DWORD length = FormatMessageA(flags, nullptr, 2, 0, large, sizeof large, nullptr);
    EXPECT_EQ(length, std::strlen(large));
}

}  // namespace
