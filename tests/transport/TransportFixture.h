// Transport selection among fake components and fake transport libraries.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "common/CPException.h"
#include "tests/fakes/FakeHome.h"
#include "tests/support/LogCapture.h"
#include "transport/JobControlFactory.h"

namespace wncom::test {

using testing::ElementsAre;

class TransportFixture : public testing::Test {
protected:
    void SetUp() override {
        SetUpFakeHome();
        m_log = std::make_unique<LogCapture>(4);
        m_factory = std::make_unique<JobControlFactory>();
    }
    void TearDown() override {
        m_factory.reset();
        m_log.reset();
        EXPECT_EQ(0, Script().LiveObjects());
    }

    // The lines logged since the last call of it, without those of component creation.
    std::vector<std::string> Lines();
    // An initialised factory and an empty script record.
    void Initialised();
    // What the port map is to answer for the address.
    static void Entry(const std::string& entry) { Script().SetServices({{kFakeAddress, entry}}); }

    std::unique_ptr<LogCapture> m_log;
    std::unique_ptr<JobControlFactory> m_factory;
};

// What a body threw: "text, status in hex", or "nothing".
std::string Thrown(const std::function<void()>& body);

}  // namespace wncom::test
