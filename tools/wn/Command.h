// What the commands of wn share: how they fail and how they speak.
#pragma once

#include <windows.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <string>

namespace CLI {
class App;
class Validator;
}  // namespace CLI

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

// For an option or argument whose empty value would be taken for none.
CLI::Validator NotEmpty();

// One answer of a command: printed as lines "name  value" for people, or as one JSON object with --json. Control
// characters in a line become question marks; what a service answers must not reach the terminal as it is.
class Report {
public:
    // The shape of the JSON object: indented, or on one line where several follow each other.
    enum class Form { Indented, OneLine };
    explicit Report(bool json, Form form = Form::Indented) : m_json(json), m_form(form) {}

    // key is the JSON name, label what a person reads; an empty text is left out of the lines.
    void Add(const char* key, const char* label, const std::string& value);
    void Add(const char* key, const char* label, const nlohmann::ordered_json& value, const std::string& text);
    // A setting as it stands in the registry: its name is also its label; absent or empty it is null, shown as none.
    void AddSetting(const char* name, const std::optional<std::string>& value, const std::string& none);
    // A document of several lines, shown below the lines so far.
    void AddDocument(const char* key, const std::string& text);
    // Lines for people only.
    void Line(const std::string& text);

    // Runs the rest of the work and prints the report when it ends, also when it throws: what was reached stays
    // known. People see at once what is in the report by then.
    template <class Work>
    void PrintAfter(Work work) {
        if (!m_json) Print();
        try {
            work();
        } catch (...) {
            Print();
            throw;
        }
        Print();
    }
    // Writes to standard output what was not written yet. Throws CommandError when that fails.
    void Print();

private:
    bool m_json;
    Form m_form;
    nlohmann::ordered_json m_values = nlohmann::ordered_json::object();
    std::string m_lines;
};

// Each adds its subcommands to the program's command line. json outlives them and is set when it is parsed.
void AddRegisterCommands(CLI::App& app, const bool& json);
void AddLoggingCommands(CLI::App& app, const bool& json);
void AddDirectoryCommands(CLI::App& app, const bool& json);
void AddPortMapCommands(CLI::App& app, const bool& json);
void AddSubmitCommand(CLI::App& app, const bool& json);
void AddCapabilitiesCommand(CLI::App& app, const bool& json);
void AddDataCommands(CLI::App& app, const bool& json);
void AddEventsCommands(CLI::App& app, const bool& json);
void AddConfigCommand(CLI::App& app, const bool& json);
// Below "events"; adds nothing in a build without an HTTP library.
void AddWatchCommand(CLI::App& events, const bool& json);

}  // namespace wn
