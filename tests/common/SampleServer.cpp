// A COM server in a process of its own, as far as its registration goes: what it does is told by the environment.
//   WNCOM_SAMPLE_OUTPUT  a file that it writes its arguments to
//   WNCOM_SAMPLE_SLEEP   milliseconds before it ends
//   WNCOM_SAMPLE_UNTIL   a file without which it does not end for a minute; it removes the file then
//   WNCOM_SAMPLE_EXIT    its exit code, 0 when not set
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

namespace {

std::string Setting(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

}  // namespace

int main(int count, char** arguments) {
    using std::chrono::milliseconds;
    if (const std::string path = Setting("WNCOM_SAMPLE_OUTPUT"); !path.empty()) {
        std::ofstream file(path, std::ios::binary);
        for (int i = 1; i < count; ++i) file << arguments[i] << '\n';
    }
    std::this_thread::sleep_for(milliseconds(std::atoi(Setting("WNCOM_SAMPLE_SLEEP").c_str())));
    if (const std::string path = Setting("WNCOM_SAMPLE_UNTIL"); !path.empty()) {
        std::error_code busy;  // the file may still be open where it is being made
        for (int i = 0; i < 6000 && !std::filesystem::remove(path, busy); ++i) {
            std::this_thread::sleep_for(milliseconds(10));
        }
    }
    return std::atoi(Setting("WNCOM_SAMPLE_EXIT").c_str());
}
