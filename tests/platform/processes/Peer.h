// The other process of a test.
#pragma once

#include <windows.h>

#include <string>

namespace wncom::test {

// The path of the peer's program.
std::string PeerProgram();

// The program of PeerProgram.cpp, running with a deed and its arguments, or another one; ended with the object, when
// it has not ended itself.
class Peer {
public:
    explicit Peer(const std::string& arguments, const std::string& program = PeerProgram());
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;
    ~Peer();

    HANDLE Process() const { return m_process; }
    DWORD Id() const { return m_id; }
    // Ends it at once, as a crash would, and waits for that.
    void Kill();
    // Its exit status, once it has ended.
    DWORD Result();

private:
    HANDLE m_process = nullptr;
    DWORD m_id = 0;
};

// A path in the home.
std::string InHome(const std::string& name);

// Waits until a file is there; fails the test when that takes too long.
void AwaitFile(const std::string& path);

}  // namespace wncom::test
