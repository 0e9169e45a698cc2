// What addresses must hold to.
#pragma once

#include <string>

namespace CLI {
class Validator;
}  // namespace CLI

namespace wn {

// For options and arguments that name a service, of whatever transport: refuses an empty address and one with a user
// or a password, without repeating them.
CLI::Validator ServiceAddress();

// The same for an address that wn itself sends something to, or has something sent to: http or https.
CLI::Validator HttpAddress();

}  // namespace wn
