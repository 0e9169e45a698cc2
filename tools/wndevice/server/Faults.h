// Faults on request: what a client must survive.
#pragma once

#include <condition_variable>
#include <map>
#include <mutex>
#include <set>
#include <string>

namespace httplib {
struct Response;
}  // namespace httplib

namespace wndevice {

// The faults that the command line asks for, each for one operation. Any thread may call once all are added.
class Faults {
public:
    // "OPERATION:KIND" or "OPERATION:KIND=VALUE". Throws std::invalid_argument with a text for the user.
    void Add(const std::string& text);
    // Before the operation's work; true when the fault took its place and the answer stands.
    bool Before(const std::string& operation, httplib::Response& answer);
    // Whether the connection is to be closed instead of the operation's work.
    bool Closes(const std::string& operation) const { return Find(operation, "close") != nullptr; }
    // After the operation's work, on an answer that stands.
    void After(const std::string& operation, httplib::Response& answer) const;
    // Whether the connection is to be closed after the work: once for an operation, so a repeated request is
    // answered.
    bool LosesAnswer(const std::string& operation);
    // Ends every wait that a fault makes, for good.
    void EndWaits();

    // One line each, for the help text.
    static std::string Help();

private:
    struct Fault {
        std::string kind;
        std::string text;
        std::size_t number = 0;
    };
    const Fault* Find(const std::string& operation, const char* kind) const;

    std::multimap<std::string, Fault> m_faults;  // by operation
    std::mutex m_lock;
    std::condition_variable m_change;
    std::set<std::string> m_lost;  // operations whose answer was lost
    bool m_ending = false;
};

}  // namespace wndevice
