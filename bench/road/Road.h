// The road of a request without a service: an agent over the bench's transport library.
#pragma once

#include <string>

#include "tests/support/Com.h"
#include "wncom/wnCOM.h"

namespace wncom::bench {

// What the service description gives as its identifier.
inline constexpr const char* kServiceId = "bench";

// A home in which the road needs no service, and an agent on it. The logging is a configuration as it stands in the
// registry, "none" for none.
class Road {
public:
    explicit Road(const std::string& logging);

    IWendrel& agent() const { return *m_agent.get(); }
    // One more agent, with a parent and a service description of its own.
    static CPComPtr<IWendrel> MakeAgent();
    // Another interface of the agent.
    template <class Interface>
    CPComPtr<Interface> As() const {
        CPComPtr<Interface> other;
        m_agent->QueryInterface(Interface::kIid, other.put_void());
        return other;
    }

private:
    test::LoadedModule m_library;
    test::LoadedModule m_components;
    test::Apartment m_apartment;
    CPComPtr<IWendrel> m_agent;
};

}  // namespace wncom::bench
