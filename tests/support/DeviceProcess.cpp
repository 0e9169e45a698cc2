#include "tests/support/DeviceProcess.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <utility>

#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

// Starts the program with its standard output and standard error on these descriptors.
pid_t Start(const std::vector<std::string>& arguments, int output, int error) {
    const std::string program = ProgramFolder() + "/wndevice";
    std::vector<char*> texts = {const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments) texts.push_back(const_cast<char*>(argument.c_str()));
    texts.push_back(nullptr);
    const pid_t process = fork();
    if (process < 0) throw std::runtime_error("cannot start a process");
    if (process != 0) return process;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    dup2(output, STDOUT_FILENO);
    dup2(error, STDERR_FILENO);
    execv(program.c_str(), texts.data());
    _exit(127);
}

int Wait(pid_t process) {
    int status = 0;
    waitpid(process, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string FirstLine(int descriptor) {
    std::string line;
    char byte = 0;
    while (read(descriptor, &byte, 1) == 1 && byte != '\n') line += byte;
    return line;
}

std::string NewStore() {
    static int count = 0;
    return HomePath() + "/device-" + std::to_string(++count);
}

}  // namespace

DeviceProcess::DeviceProcess(const std::vector<std::string>& arguments) : DeviceProcess(arguments, NewStore()) {}

DeviceProcess::DeviceProcess(const std::vector<std::string>& arguments, std::string store)
    : m_store(std::move(store)) {
    std::filesystem::create_directories(m_store);
    std::vector<std::string> all = {"--store", m_store};
    all.insert(all.end(), arguments.begin(), arguments.end());
    std::array<int, 2> pipe{};
    if (pipe2(pipe.data(), O_CLOEXEC) != 0) throw std::runtime_error("cannot make a pipe");
    const int log = open((m_store + "/log").c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    m_process = Start(all, pipe[1], log);
    close(log);
    close(pipe[1]);
    m_address = FirstLine(pipe[0]);
    close(pipe[0]);
    if (m_address.empty()) {
        Stop();
        throw std::runtime_error("wndevice did not start: " + Log());
    }
}

DeviceProcess::~DeviceProcess() { Kill(); }

std::vector<std::string> DeviceProcess::Jobs() const {
    std::vector<std::string> ids;
    for (const auto& entry : std::filesystem::directory_iterator(m_store + "/jobs")) {
        ids.push_back(entry.path().filename().string());
    }
    return ids;
}

std::string DeviceProcess::Log() const { return ReadWholeFile(m_store + "/log"); }

int DeviceProcess::Stop() {
    End(SIGTERM);
    return m_exitCode;
}

void DeviceProcess::Kill() { End(SIGKILL); }

void DeviceProcess::End(int signal) {
    if (m_process < 0) return;
    kill(m_process, signal);
    m_exitCode = Wait(m_process);
    m_process = -1;
}

int RunDevice(const std::vector<std::string>& arguments) {
    const int nothing = open("/dev/null", O_WRONLY | O_CLOEXEC);
    const pid_t process = Start(arguments, nothing, nothing);
    close(nothing);
    return Wait(process);
}

}  // namespace wncom::test
