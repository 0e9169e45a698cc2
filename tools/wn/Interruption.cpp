#include "tools/wn/Interruption.h"

#include <atomic>
#include <csignal>

namespace wn {
namespace {

// A signal may arrive in any thread of the process.
std::atomic<bool> wanted = false;
static_assert(std::atomic<bool>::is_always_lock_free);

extern "C" void NoteSignal(int signal) {
    wanted = true;
    std::signal(signal, SIG_DFL);
}

}  // namespace

Interruption::Interruption() {
    wanted = false;
    std::signal(SIGINT, NoteSignal);
    std::signal(SIGTERM, NoteSignal);
}

Interruption::~Interruption() {
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
}

bool Interruption::Wanted() const { return wanted; }

}  // namespace wn
