// The operations of the agent that ask something of its service, for tests that walk all of them. The capabilities
// ticket is not among them: its cache has faults of its own.
#pragma once

#include <ostream>
#include <span>

#include "tests/agent/AgentFixture.h"

namespace wncom::test {

// An agent by all its interfaces.
struct AllInterfaces {
    explicit AllInterfaces(const CPComPtr<IWendrel>& agent) : wendrel(agent) {
        for (const HRESULT status :
             {agent.QueryInterface(sessions), agent.QueryInterface(jobs), agent.QueryInterface(data),
              agent.QueryInterface(events), agent.QueryInterface(tickets)}) {
            EXPECT_EQ(Hex(status), Hex(S_OK));
        }
    }

    CPComPtr<IWendrel> wendrel;
    CPComPtr<ISessionControl> sessions;
    CPComPtr<IJobControl> jobs;
    CPComPtr<IWNXDMAccess> data;
    CPComPtr<IComBaseEvent> events;
    CPComPtr<IWNEventAccess> tickets;
};

struct Operation {
    const char* name;
    HRESULT (*call)(const AllInterfaces& agent, BSTR text, BSTR* exception, BSTR* answer);
    HRESULT notConnected;  // its status when there is no remote object

    // With texts of its own for every argument and out-parameter.
    HRESULT Run(const AllInterfaces& agent) const;
};
inline std::ostream& operator<<(std::ostream& out, const Operation& operation) { return out << operation.name; }

std::span<const Operation> Operations();

// Submits a job; a transport description comes back exactly when that succeeds.
HRESULT Submit(const CPComPtr<IWendrel>& agent);

// Tells the script that each remote operation succeeds, with a text for the client beside its answer.
void ScriptAnswers();

}  // namespace wncom::test
