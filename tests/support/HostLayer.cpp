#include <csignal>
#include <cstdlib>
#include <filesystem>

#include "platform/include/wnplatform/inspect.h"
#include "tests/support/Host.h"

namespace wncom::test {

std::string MakeHome() {
    std::string path = (std::filesystem::temp_directory_path() / "wncom-test-XXXXXX").string();
    if (!mkdtemp(path.data())) std::abort();
    // The layer reads the variable once, at its first use; nothing of it runs before main.
    setenv("WNCOM_HOME", path.c_str(), 1);
    return path;
}

void RemoveHome(const std::string& path, bool keepFolder) {
    if (!keepFolder) std::filesystem::remove_all(path);
}

void SetEnvironment(const char* name, const char* value) {
    if (value) {
        setenv(name, value, 1);
    } else {
        unsetenv(name);
    }
}

void CaptureDebugOutput(const std::string& path) { SetEnvironment("WNCOM_DEBUG_OUTPUT", path.c_str()); }

void KillProcess(unsigned long id) { kill(static_cast<pid_t>(id), SIGKILL); }

std::string HostPath(const std::string& path) { return wnplatform::HostPath(path.c_str()); }

long LiveTexts() { return wnplatform::LiveTexts(); }

}  // namespace wncom::test
