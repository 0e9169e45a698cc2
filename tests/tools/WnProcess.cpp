#include "tests/tools/WnProcess.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>

#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

std::string NewFile(const char* kind) {
    static int count = 0;
    return HomePath() + "/wn-" + std::to_string(++count) + kind;
}

int OpenForWriting(const std::string& path) {
    return open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
}

}  // namespace

WnProcess::WnProcess(const std::vector<std::string>& arguments)
    : m_output(NewFile(".out")), m_error(NewFile(".err")) {
    const std::string program = ProgramFolder() + "/wn";
    std::vector<char*> texts = {const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments) texts.push_back(const_cast<char*>(argument.c_str()));
    texts.push_back(nullptr);
    const int output = OpenForWriting(m_output);
    const int error = OpenForWriting(m_error);
    m_process = fork();
    if (m_process < 0) throw std::runtime_error("cannot start a process");
    if (m_process == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        dup2(output, STDOUT_FILENO);
        dup2(error, STDERR_FILENO);
        execv(program.c_str(), texts.data());
        _exit(127);
    }
    close(output);
    close(error);
}

WnProcess::~WnProcess() {
    if (m_process < 0) return;
    kill(m_process, SIGKILL);
    waitpid(m_process, nullptr, 0);
}

std::string WnProcess::Output() const { return ReadWholeFile(m_output); }
std::string WnProcess::Error() const { return ReadWholeFile(m_error); }

int WnProcess::Wait() {
    int status = 0;
    waitpid(m_process, &status, 0);
    m_process = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace wncom::test
