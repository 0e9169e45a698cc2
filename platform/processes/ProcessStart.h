// Starting programs.
#pragma once

#include <sys/types.h>

#include "winbase.h"

namespace wnplatform {

struct ProgramStart {
    LPCSTR application;  // path of the program, null when the command line names it
    LPCSTR commandLine;  // null when it is the program's path alone
    bool detached;       // a session of its own, with nothing on its standard descriptors
    LPCSTR environment;  // texts that end with an empty one, null for the caller's own
    LPCSTR directory;    // null for the caller's own
};

// Starts a program and stores its process id. Returns a system error code, also for what goes wrong in the new
// process before the program runs.
DWORD StartProgram(const ProgramStart& start, pid_t& process);

}  // namespace wnplatform
