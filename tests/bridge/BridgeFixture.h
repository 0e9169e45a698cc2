// A bridge among fake components and fake transport libraries.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "bridge/OrbStuff.h"
#include "tests/fakes/FakeHome.h"
#include "tests/support/LogCapture.h"

namespace wncom::test {

using testing::ElementsAre;

inline const WCHAR* const kWideAddress = OLESTR("http://device/service");

class BridgeFixture : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // The lines up to level 3 since the last call of it, without those of transport selection.
    std::vector<std::string> Lines();
    // Connects the bridge and forgets what that called and logged.
    void Connect();
    // What was asked of the remote object.
    static std::vector<std::string> RemoteCalls() { return Script().CallsOf("FakeTransport"); }

    std::unique_ptr<LogCapture> m_log;
    std::unique_ptr<OrbStuff> m_bridge;
};

// A text below U+0100 as bytes; "null" for null.
std::string Shown(const WCHAR* text);
inline std::string Shown(const MallocText<WCHAR>& text) { return Shown(text.get()); }

}  // namespace wncom::test
