// In place of the parts that need an HTTP library, where there is none: what they would do is refused before anything
// else is done.
#include <CLI/CLI.hpp>

#include "tools/wn/core/Command.h"
#include "tools/wn/core/CommandError.h"
#include "tools/wn/jobs/JobHttp.h"

namespace wn {
namespace {

[[noreturn]] void Refuse(const char* what, const char* hint) {
    throw WrongInput(std::string("This wn was built without an HTTP library and ") + what, hint);
}

}  // namespace

void RequireHttp() { Refuse("cannot reach the addresses of a job", "Submit without --data"); }

Delivery Deliver(InputFile&, const std::string&, DeliveryMethod, TimeLimit) {
    RequireHttp();
    return {};
}

std::string ReadJob(const std::string&, TimeLimit) {
    RequireHttp();
    return {};
}

void AddWatchCommand(CLI::App& events, const bool&) {
    CLI::App* watch = events.add_subcommand("watch", "Not in this wn, which was built without an HTTP library");
    watch->fallthrough(false)->allow_extras();
    watch->callback(
        [] { Refuse("cannot receive events", "'wn events subscribe' lets another consumer receive them"); });
}

}  // namespace wn
