// The device service "wndevice" in a process of its own, for one test.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace wncom::test {

// Runs while the object lives, on a free port of 127.0.0.1; it also ends with this process, however that ends.
class DeviceProcess {
public:
    // Further arguments, such as {"--fault", "submit:status=500"}. Returns when the service takes connections; throws
    // std::runtime_error when it does not start.
    explicit DeviceProcess(const std::vector<std::string>& arguments = {});
    // Goes on with the store of a device that has ended.
    DeviceProcess(const std::vector<std::string>& arguments, std::string store);
    DeviceProcess(const DeviceProcess&) = delete;
    DeviceProcess& operator=(const DeviceProcess&) = delete;
    ~DeviceProcess();

    // The service address, without a trailing slash.
    const std::string& Address() const { return m_address; }
    // The folder of its jobs (jobs/<id>/ticket.xml and jobs/<id>/data.bin), inside the test's home.
    const std::string& Store() const { return m_store; }
    // The ids of the stored jobs, in no order.
    std::vector<std::string> Jobs() const;
    // One line per answered request: "port CLIENT-PORT: METHOD PATH STATUS". Complete after Stop.
    std::string Log() const;

    // Asks it to end and waits; gives its exit code, -1 when a signal ended it. Later calls give the same.
    int Stop();
    // Ends it at once, as a fault of the machine would.
    void Kill();

private:
    void End(int signal);

    std::string m_store;
    std::string m_address;
    pid_t m_process = -1;
    int m_exitCode = -1;
};

// Runs "wndevice" with these arguments to its end and gives its exit code; for those that it refuses.
int RunDevice(const std::vector<std::string>& arguments);

}  // namespace wncom::test
