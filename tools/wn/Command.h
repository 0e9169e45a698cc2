// What the commands of wn share: how they fail and how they speak.
#pragma once

#include <windows.h>

#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

namespace CLI {
class App;
}

namespace wn {

// Ends the command with one line on standard error and status 1. The text says what is wrong and what to do.
class CommandError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// What a status means, with its number: "Class not registered (0x80040154)".
std::string StatusText(HRESULT status);
// The same for a system error code.
std::string ErrorText(DWORD code);

// One answer of a command: printed as lines "name  value" for people, or as one JSON object with --json.
class Report {
public:
    explicit Report(bool json) : m_json(json) {}

    // key is the JSON name, label what a person reads; an empty text is left out of the lines.
    void Add(const char* key, const char* label, const std::string& value);
    void Add(const char* key, const char* label, const nlohmann::json& value, const std::string& text);
    // Lines for people only.
    void Line(const std::string& text);
    bool json() const { return m_json; }
    // Writes everything to standard output.
    void Print() const;

private:
    bool m_json;
    nlohmann::ordered_json m_values = nlohmann::ordered_json::object();
    std::string m_lines;
};

// Each adds its subcommands to the program's command line. json outlives them and is set when it is parsed.
void AddRegisterCommands(CLI::App& app, const bool& json);
void AddLoggingCommands(CLI::App& app, const bool& json);
void AddDirectoryCommands(CLI::App& app, const bool& json);
void AddPortMapCommands(CLI::App& app, const bool& json);
void AddSubmitCommand(CLI::App& app, const bool& json);

}  // namespace wn
