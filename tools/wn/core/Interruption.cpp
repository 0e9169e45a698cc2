#include "tools/wn/core/Interruption.h"

#include <atomic>
#include <csignal>

namespace wn {
namespace {

// A signal may arrive in any thread of the process.
std::atomic<int> noted = 0;  // the signal
static_assert(std::atomic<int>::is_always_lock_free);

extern "C" void NoteSignal(int signal) {
    noted = signal;
    std::signal(signal, SIG_DFL);
}

}  // namespace

Interruption::Interruption() {
    noted = 0;
    std::signal(SIGINT, NoteSignal);
    std::signal(SIGTERM, NoteSignal);
}

Interruption::~Interruption() {
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
}

bool Interruption::Wanted() const { return noted != 0; }

ExitStatus Interruption::Status() const { return static_cast<ExitStatus>(128 + noted); }

}  // namespace wn
