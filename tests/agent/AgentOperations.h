// The operations of the agent as a table, for tests that walk all of them. The capabilities ticket is not among them:
// its cache has faults of its own.
#pragma once

#include <ostream>
#include <span>

#include "tests/agent/AgentFixture.h"

namespace wncom::test {

// An agent by all its interfaces.
struct AllInterfaces {
    explicit AllInterfaces(const CPComPtr<IWendrel>& agent);

    CPComPtr<IWendrel> wendrel;
    CPComPtr<ISessionControl> sessions;
    CPComPtr<IJobControl> jobs;
    CPComPtr<IWNXDMAccess> data;
    CPComPtr<IComBaseEvent> events;
    CPComPtr<IWNEventAccess> tickets;
};

struct Operation {
    const char* name;
    // The text stands for each argument; each pointer may be null.
    HRESULT (*call)(const AllInterfaces& agent, BSTR text, BSTR* exception, BSTR* answer);
    HRESULT notConnected;  // its status when there is no remote object

    // With texts of its own for every argument and out-parameter.
    HRESULT Run(const AllInterfaces& agent) const;
};
inline std::ostream& operator<<(std::ostream& out, const Operation& operation) { return out << operation.name; }

// Those that ask something of the service, and those whose answer is fixed.
std::span<const Operation> Operations();
std::span<const Operation> FixedOperations();

// Submits a job; a transport description comes back exactly when that succeeds.
HRESULT Submit(const CPComPtr<IWendrel>& agent, BSTR ticket = Text("<t/>").get());

// Tells the script that each remote operation succeeds, with a text for the client beside its answer.
void ScriptAnswers();
// The texts beside the answers alone.
void ScriptDetails();
// What each remote operation does from now on, but for the making of objects.
void MisbehaveRemotely(Misbehaviour misbehaviour);

}  // namespace wncom::test
