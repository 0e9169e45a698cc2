// Brings a job's data to the address that the service gave.
#pragma once

#include <cstdint>
#include <string>

namespace wn {

struct Delivery {
    std::uint64_t bytes;
    double seconds;
};

// Throws CommandError in a build without an HTTP library, which delivers nothing.
void RequireDelivery();

// Sends the file's bytes with POST (delivery method 1) or PUT (3). Throws CommandError with the address when the
// service cannot be reached, refuses the data or stops taking it for a minute.
Delivery Deliver(const std::string& file, const std::string& address, int deliveryMethod);

}  // namespace wn
