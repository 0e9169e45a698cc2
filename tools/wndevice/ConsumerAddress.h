// Where events may go.
#pragma once

#include <string>

namespace wndevice {

// Whether a text is an http address on loopback, without a user, of at most 1024 bytes: the device must not be made
// to send anything elsewhere.
bool IsConsumerAddress(const std::string& text);

}  // namespace wndevice
