// What goes between wn and the addresses of a job, past the agent.
#pragma once

#include <cstdint>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <string>

#include "tools/wn/core/InputFile.h"
#include "tools/wn/core/Waiting.h"

namespace wn {

struct Delivery {
    std::uint64_t bytes;
    double seconds;

    nlohmann::ordered_json json() const { return {{"bytes", bytes}, {"seconds", seconds}}; }
    std::string text() const {
        char line[64];
        std::snprintf(line, sizeof(line), "%llu bytes in %.2f s", static_cast<unsigned long long>(bytes), seconds);
        return line;
    }
};

enum class DeliveryMethod { Post, Put };

// Throws WrongInput in a build without an HTTP library, where the other two do so too.
void RequireHttp();

// Sends the rest of the file; a pipe goes in chunks. Throws CommandError with the address when the service cannot be
// reached, refuses the data or stops taking it for a minute, when the limit is over, and after Ctrl-C.
Delivery Deliver(InputFile& file, const std::string& address, DeliveryMethod method, TimeLimit limit);

// The state of the job as its service tells it. Failures as above.
std::string ReadJob(const std::string& address, TimeLimit limit);

}  // namespace wn
