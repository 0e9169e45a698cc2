// Why an operation failed, for the client.
#pragma once

#include <string_view>

namespace wncom::http {

// Leaves the reason, in UTF-8, as COM's error object of the calling thread, where scripts and debuggers read it: one
// line without control characters. An empty one takes the last reason away. When memory runs out there is none.
void SetFailureReason(std::string_view reason) noexcept;

}  // namespace wncom::http
