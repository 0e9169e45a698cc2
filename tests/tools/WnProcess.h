// The command line "wn" in a process of its own, in the home of the test.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace wncom::test {

// One run of it. It also ends with this process, however that ends.
class WnProcess {
public:
    explicit WnProcess(const std::vector<std::string>& arguments);
    WnProcess(const WnProcess&) = delete;
    WnProcess& operator=(const WnProcess&) = delete;
    ~WnProcess();

    // What it has written so far.
    std::string Output() const;
    std::string Error() const;
    // For a signal; valid until Wait.
    pid_t Pid() const { return m_process; }
    // Waits for its end and gives the exit status; -1 when a signal ended it.
    int Wait();

private:
    pid_t m_process = -1;
    std::string m_output;
    std::string m_error;
};

}  // namespace wncom::test
