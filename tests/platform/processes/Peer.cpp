#include "tests/platform/processes/Peer.h"

#include <gtest/gtest.h>

#include "tests/support/Host.h"
#include "tests/support/TestHome.h"

namespace wncom::test {

std::string PeerProgram() { return ProgramFolder() + "/platform_peer.exe"; }

std::string InHome(const std::string& name) { return HomePath() + "/" + name; }

Peer::Peer(const std::string& arguments, const std::string& program) {
    std::string line = "\"" + program + "\" " + arguments;
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION information{};
    if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, NORMAL_PRIORITY_CLASS, nullptr, nullptr,
                        &startup, &information)) {
        ADD_FAILURE() << "no process for " << line << ": error " << GetLastError();
        return;
    }
    CloseHandle(information.hThread);
    m_process = information.hProcess;
    m_id = information.dwProcessId;
}

Peer::~Peer() {
    Kill();
    CloseHandle(m_process);
}

void Peer::Kill() {
    // The id of one that has ended and was waited for may be another's by now.
    if (WaitForSingleObject(m_process, 0) == WAIT_TIMEOUT) KillProcess(m_id);
    WaitForSingleObject(m_process, INFINITE);
}

DWORD Peer::Result() {
    DWORD code = STILL_ACTIVE;
    EXPECT_EQ(WaitForSingleObject(m_process, 60'000), WAIT_OBJECT_0);
    EXPECT_TRUE(GetExitCodeProcess(m_process, &code));
    return code;
}

void AwaitFile(const std::string& path) {
    for (int i = 0; i < 1000; ++i) {
        if (GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES) return;
        Sleep(10);
    }
    ADD_FAILURE() << path << " never came";
}

}  // namespace wncom::test
