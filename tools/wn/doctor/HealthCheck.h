// What wn doctor looks at.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tools/wn/service/Agent.h"

namespace wn {

// One look. It gives a few words on what is well, or throws CommandError: what is wrong, why, and what mends it.
struct HealthCheck {
    std::string title;
    std::function<std::string()> look;
};

// The home, the registry, the modules of the classes and the logs.
std::vector<HealthCheck> SetupChecks();
// The catalogue, its libraries, the port map and the transport's settings.
std::vector<HealthCheck> TransportChecks();
// The port map's entry for the service and the library that serves it; what fails before a library is there.
std::vector<HealthCheck> RoadChecks(const std::string& address);
// Whether the service answers.
HealthCheck ConnectionCheck(const Service& service, bool json);

struct Diagnosis {
    bool fine = true;
    std::string text;
    std::string hint;  // what mends it; empty when it is fine
};

// A check that fails by itself is a result too.
Diagnosis Run(const HealthCheck& check);

}  // namespace wn
