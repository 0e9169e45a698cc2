// The answer of a command.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace wn {

// Printed on standard output as lines "name  value" for people, or as one JSON object with --json. Control characters
// in a line become question marks: what a service answers must not reach the terminal as it is.
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
    // For people the document is all of the output, so that it can be sent into a file as it is; what was added
    // before goes to standard error.
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

}  // namespace wn
