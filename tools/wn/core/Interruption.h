// The user's wish to end a command that goes on by itself.
#pragma once

#include "tools/wn/core/CommandError.h"

namespace wn {

// While it lives, Ctrl-C and a request to terminate are noted instead of ending the program at once. A second one
// ends it, for whoever does not want to wait. One at a time.
class Interruption {
public:
    Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;
    ~Interruption();

    bool Wanted() const;
    // What the program returns for it: 128 and the number of the signal.
    ExitStatus Status() const;
};

}  // namespace wn
