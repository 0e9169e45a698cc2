// In place of the parts that need an HTTP library, where there is none: no delivery and no watching are offered.
#include "tools/wn/Command.h"
#include "tools/wn/Deliver.h"

namespace wn {

bool CanDeliver() { return false; }

Delivery Deliver(const std::string&, const std::string&, int) {
    throw CommandError("This wn was built without an HTTP library and delivers no data");
}

void AddWatchCommand(CLI::App&, const bool&) {}

}  // namespace wn
