// A client's view of the agent: everything through registration, CoCreateInstance and interfaces. The outside
// components and the transport library are the scripted fakes.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/fakes/FakeScript.h"
#include "tests/support/Com.h"
#include "tests/support/TestHome.h"
#include "tests/support/Utf8Text.h"
#include "wncom/Descriptions.h"
#include "wncom/wnCOM.h"

namespace wncom::test {

inline constexpr const char* kLoggingKey = "SOFTWARE\\Quillbeck\\QBNorvel\\Logging";
inline constexpr const char* kAddress = "http://device/service";
inline constexpr const char* kResponse =
    "<R><PostURI>http://device/data/7</PostURI><JobUri>http://device/job/7</JobUri></R>";

// A client's variable for an [out] text. It begins with a text of the client's own, which a callee must not free.
class OutText {
public:
    OutText() = default;
    OutText(const OutText&) = delete;
    OutText& operator=(const OutText&) = delete;
    ~OutText();

    // For one call; a text that an earlier call stored is lost.
    BSTR* put() { return &m_place; }
    // The text that was stored in UTF-8, "(null)" for null, or "(untouched)".
    std::string Shown() const;

private:
    const Bstr m_own = Text("own");
    BSTR m_place = m_own.get();
};

// Registers wnCOM and the fakes, writes a configuration with which a submission succeeds, and fails a test that
// leaves an object or a module lock behind.
class AgentFixture : public testing::Test {
protected:
    AgentFixture();
    ~AgentFixture() override;

    // Back to the script and the settings that the test began with.
    void Prepare();
    // Takes effect with the next object that starts a log.
    void SetLogLevel(int level) const;
    // What was asked of the outside and logged since Prepare, a line each, without the string buffer's own lines.
    // Unless whole, the lines of transport selection and of component creation are left out too: other tests look at
    // those.
    std::string Happened(bool whole = false) const;

    // A service description of the fakes, without a trace in the script.
    CPComPtr<IServiceDesc> Service(const char* id = "device-7", const char* address = kAddress);
    // An agent that the parent made; a failed test when it did not.
    CPComPtr<IWendrel> Agent();
    template <class Interface>
    CPComPtr<Interface> Agent() {
        CPComPtr<Interface> other;
        EXPECT_EQ(Hex(Agent().QueryInterface(other)), Hex(S_OK));
        return other;
    }
    HRESULT CanUnload() const { return m_module.Call("DllCanUnloadNow"); }

    const std::string m_logPath = HomePath() + "/agent.log";
    std::size_t m_logStart = 0;  // bytes of the log that are not looked at
    LoadedModule m_module;
    Apartment m_apartment;
};

}  // namespace wncom::test
