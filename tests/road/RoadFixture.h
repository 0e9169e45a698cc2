// The whole road with nothing faked: the real modules through their registration, and a device service of its own
// process.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/support/Com.h"
#include "tests/support/DeviceProcess.h"
#include "tests/support/TestHome.h"
#include "wncom/Descriptions.h"
#include "wncom/wnCOM.h"

namespace wncom::test {

inline constexpr const char* kRoadTicket = "<intentTicket><jobName>Programme</jobName></intentTicket>";

// Begins with a catalogue and without a port map: a submission succeeds. A test that leaves an object, a module lock
// or the transport library behind fails.
class RoadFixture : public testing::Test {
protected:
    RoadFixture();
    ~RoadFixture() override;

    static void SetCatalogue(const std::string& text);
    static void RemoveCatalogue();
    static void SetPortMap(const std::string& text);
    // The catalogue's entries: pairs of elements as the library reads them.
    static std::string Dll(const std::string& type, const std::string& name);
    static std::string Catalogue(const std::string& networkMapping, const std::string& dlls);
    // A number under the HTTP transport's key.
    static void SetTransport(const char* name, DWORD value);

    static CPComPtr<IServiceDesc> Service(const std::string& address);
    static CPComPtr<IWendrel> Agent(const CPComPtr<IServiceDesc>& service);
    static CPComPtr<IWendrel> Agent(const std::string& address) { return Agent(Service(address)); }
    static void SetAddress(const CPComPtr<IServiceDesc>& service, const std::string& address);
    // Another interface of the agent.
    template <class Interface>
    static CPComPtr<Interface> Ask(const CPComPtr<IWendrel>& agent) {
        CPComPtr<Interface> asked;
        EXPECT_EQ(Hex(agent.QueryInterface(asked)), Hex(S_OK));
        return asked;
    }

    // The status of a submission in hex. The data address goes to the text, when there is one.
    static std::string Submit(const CPComPtr<IWendrel>& agent, std::string* dataAddress = nullptr);
    static std::string SubmitAnew(const std::string& address) { return Submit(Agent(address)); }

    // What was logged since the last call, at level 3, by all modules.
    std::string Log();

private:
    const std::string m_logPath = HomePath() + "/road.log";
    std::size_t m_logRead = 0;  // bytes
    LoadedModule m_agentModule;
    LoadedModule m_components;
    Apartment m_apartment;
};

}  // namespace wncom::test
