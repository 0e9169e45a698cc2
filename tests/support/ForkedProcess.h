// A second process with this one's memory. Only the layer's hosts fork.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>
#include <windows.h>

namespace wncom::test {

// Runs a function, which answers a status, in a process of its own; nothing is closed at its end, as if it were
// killed there. To be called while this process has no database open.
template <class Function>
pid_t RunInProcess(Function function) {
    const pid_t child = fork();
    if (child == 0) _exit(function() == S_OK ? 0 : 1);
    return child;
}

inline void ExpectSuccess(pid_t process) {
    int status = -1;
    EXPECT_EQ(waitpid(process, &status, 0), process);
    EXPECT_EQ(status, 0);
}

}  // namespace wncom::test
