// In place of the parts that need an HTTP library, where there is none: what they would do is refused with a clear
// word, before anything else is done.
#include <CLI/CLI.hpp>

#include "tools/wn/Command.h"
#include "tools/wn/Deliver.h"

namespace wn {
namespace {

constexpr const char* kNoDelivery =
    "This wn was built without an HTTP library and delivers no data: submit without --data";

}  // namespace

void RequireDelivery() { throw CommandError(kNoDelivery); }

Delivery Deliver(const std::string&, const std::string&, int) { throw CommandError(kNoDelivery); }

void AddWatchCommand(CLI::App& events, const bool&) {
    CLI::App* watch = events.add_subcommand("watch", "Not in this wn, which was built without an HTTP library");
    watch->fallthrough(false)->allow_extras();
    watch->callback([] {
        throw CommandError(
            "This wn was built without an HTTP library and receives no events: 'wn events subscribe' lets another "
            "consumer receive them");
    });
}

}  // namespace wn
