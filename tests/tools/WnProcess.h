// The command line "wn" in a process of its own, in the home of the test.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace wncom::test {

struct WnOutcome {
    int status;  // exit status; -1 when a signal ended it
    std::string output;
    std::string error;
};

// One run of it. It also ends with this process, however that ends.
class WnProcess {
public:
    explicit WnProcess(const std::vector<std::string>& arguments);
    // With standard output on a device such as "/dev/full", which is not read back.
    WnProcess(const std::vector<std::string>& arguments, const std::string& outputDevice);
    WnProcess(const WnProcess&) = delete;
    WnProcess& operator=(const WnProcess&) = delete;
    ~WnProcess();

    // What it has written to standard output so far.
    std::string Output() const;
    // For a signal; valid until Wait.
    pid_t Pid() const { return m_process; }
    // Waits for its end. Later calls give the same.
    WnOutcome Wait();

private:
    void Start(const std::vector<std::string>& arguments, const std::string& outputPath);

    pid_t m_process = -1;
    int m_status = -1;
    std::string m_output;
    std::string m_error;
};

WnOutcome RunWn(const std::vector<std::string>& arguments);

}  // namespace wncom::test
