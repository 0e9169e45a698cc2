// How a command fails: what failed, why, and what to do next.
#pragma once

#include <windows.h>

#include <optional>
#include <stdexcept>
#include <string>

namespace wn {

// What the program returns to whoever started it; documented in docs/troubleshooting.md and in 'wn --help'.
enum class ExitStatus { Done = 0, Failed = 1, WrongInput = 2, NotSetUp = 3, TimeOver = 4, NotDelivered = 5 };

struct Explanation {
    std::string reason{};             // why; empty when what failed says it
    std::string hint{};               // what to do next; may be empty
    std::optional<HRESULT> status{};  // the agent's, when it was the agent that failed
    ExitStatus exit = ExitStatus::Failed;
};

// Ends the command with at most three lines on standard error, one for each part.
class CommandError : public std::runtime_error {
public:
    explicit CommandError(const std::string& what, Explanation explanation = {})
        : std::runtime_error(what), m_explanation(std::move(explanation)) {}

    const Explanation& explanation() const { return m_explanation; }

private:
    Explanation m_explanation;
};

// The command line, or a file that it names, cannot be used; nothing was sent or written.
class WrongInput : public CommandError {
public:
    explicit WrongInput(const std::string& what, std::string hint = {})
        : CommandError(what, {.hint = std::move(hint), .exit = ExitStatus::WrongInput}) {}
};

// What a status means, with its number: "Class not registered (0x80040154)".
std::string StatusText(HRESULT status);
// The number alone: "0x80040154".
std::string StatusNumber(HRESULT status);
// The text of a system error code with its number: "Access is denied (5)".
std::string ErrorText(DWORD code);

// Writes the failure to standard error: as lines for people, or as one JSON object with "error", "status", "reason"
// and "hint" on a line of its own.
void PrintFailure(const CommandError& error, bool json);

}  // namespace wn
