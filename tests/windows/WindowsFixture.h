// A machine whose settings wn has made, with every service reached by the sample transport library.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/support/Com.h"
#include "tests/support/TestHome.h"
#include "tests/windows/Program.h"

namespace wncom::test {

inline constexpr const char* kLoggingKey = "SOFTWARE\\Quillbeck\\QBNorvel\\Logging";

// Both views of the registry are without settings before and after each test.
class WindowsTest : public testing::Test {
protected:
    WindowsTest() { ClearSettings(); }
    ~WindowsTest() override { ClearSettings(); }

    static void ExpectDone(const Outcome& outcome) {
        EXPECT_EQ(outcome.status, 0U);
        EXPECT_EQ(outcome.error, "");
    }
    static void ExpectRefusal(const Outcome& outcome, const std::string& text) {
        EXPECT_EQ(outcome.status, 1U);
        EXPECT_THAT(outcome.error, testing::StartsWith("wn: "));
        EXPECT_THAT(outcome.error, testing::HasSubstr(text));
    }

    static std::string Module(const char* name, int bits = kOwnBits) { return BinFolder(bits) + "\\" + name; }

    // The catalogue and the libraries of this bitness, set by that wn.
    static void SetDirectories(const std::string& folder, int bits) {
        WriteWholeFile(HomePath() + "\\catalogue\\Transports.xml",
                       "<transports><networkmapping>sample</networkmapping><path>.</path><transportdlls><jobcontrol>"
                       "<dll><type>sample</type><name>wnSampleTransport.dll</name></dll></jobcontrol></transportdlls>"
                       "</transports>");
        ExpectDone(RunWn({"directories", "--catalogue", HomePath() + "\\catalogue", "--libraries", BinFolder(bits)},
                         folder));
    }

    // A text of the library's settings in the view of this bitness, or "(absent)"; a null name is the default value.
    static std::string Setting(const char* name, int bits) {
        std::string text = "(absent)";
        HKEY key = nullptr;
        if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, kLoggingKey, 0, KEY_READ | View(bits), &key) != ERROR_SUCCESS) {
            return text;
        }
        char value[1024] = {};
        DWORD size = sizeof(value) - 1;
        if (RegQueryValueExA(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(value), &size) == ERROR_SUCCESS) {
            text = value;
        }
        RegCloseKey(key);
        return text;
    }
    static void SetLogging(const std::string& configuration, int bits) {
        HKEY key = nullptr;
        ASSERT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, kLoggingKey, 0, nullptr, 0, KEY_WRITE | View(bits), nullptr,
                                  &key, nullptr),
                  ERROR_SUCCESS);
        RegSetValueExA(key, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(configuration.c_str()),
                       static_cast<DWORD>(configuration.size() + 1));
        RegCloseKey(key);
    }

private:
    static REGSAM View(int bits) { return bits == 64 ? KEY_WOW64_64KEY : KEY_WOW64_32KEY; }

    static void ClearSettings() {
        for (const int bits : {32, 64}) {
            HKEY key = nullptr;
            if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE", 0, KEY_READ | KEY_WRITE | DELETE | View(bits), &key) !=
                ERROR_SUCCESS) {
                continue;
            }
            RegDeleteTreeA(key, "Quillbeck");
            RegCloseKey(key);
        }
    }
};

}  // namespace wncom::test
