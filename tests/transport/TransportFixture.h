// Transport selection among fake components and fake transport libraries.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <new>
#include <string>

#include "common/CPException.h"
#include "tests/fakes/FakeHome.h"
#include "tests/fakes/Happened.h"
#include "tests/support/LogCapture.h"
#include "transport/JobControlFactory.h"

namespace wncom::test {

// What a body threw: "text, status in hex", or "nothing".
template <class Body>
std::string Thrown(Body body) {
    try {
        body();
    } catch (const CPException& exception) {
        char status[16];
        std::snprintf(status, sizeof(status), ", %08x", static_cast<unsigned>(exception.GetCode()));
        return exception.what() + std::string(status);
    } catch (const std::bad_alloc&) {
        return "bad_alloc";
    } catch (int value) {
        return "int " + std::to_string(value);
    }
    return "nothing";
}

class TransportFixture : public testing::Test {
protected:
    TransportFixture() { Begin(); }
    ~TransportFixture() override {
        m_factory.reset();
        EXPECT_EQ(Script().LiveObjects(), 0);
    }

    // Another home and another factory.
    void Begin() {
        m_factory.reset();
        SetUpFakeHome();
        m_factory = std::make_unique<JobControlFactory>();
        Forget();
    }
    // What is called and logged from now on counts.
    void Forget() {
        Script().ForgetCalls();
        m_log.Clear();
    }
    // The calls and the lines since then, without those of component creation.
    std::string Happened() const { return test::Happened(m_log.Text(), BelongsToCreation); }
    // What the port map is to answer for the address.
    static void Entry(const std::string& entry) { Script().SetServices({{kFakeAddress, entry}}); }
    // Makes an object for the entry that the port map answers, and gives it back; tells what was thrown.
    std::string Use(const std::string& entry) {
        Entry(entry);
        return Thrown([&] { m_factory->Delete(m_factory->Create(kFakeAddress)); });
    }

    LogCapture m_log{4};
    std::unique_ptr<JobControlFactory> m_factory;
};

}  // namespace wncom::test
