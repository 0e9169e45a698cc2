#include "tools/wn/core/Report.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "tools/wn/core/CommandError.h"
#include "tools/wn/core/Texts.h"
#include "tools/wn/host/Host.h"

namespace wn {
namespace {

constexpr std::size_t kLabelWidth = 17;  // characters

// The lines of a document, harmless for a terminal.
std::string ForTerminal(const std::string& document) {
    std::string shown = document;
    std::replace_if(
        shown.begin(), shown.end(), [](char c) { return c != '\n' && c != '\t' && IsControl(c); }, '?');
    return shown;
}

}  // namespace

void Report::Add(const char* key, const char* label, const std::string& value) { Add(key, label, value, value); }

void Report::Add(const char* key, const char* label, const nlohmann::ordered_json& value, const std::string& text) {
    m_values[key] = value;
    if (text.empty()) return;
    std::string name(label);
    if (name.size() < kLabelWidth) name.resize(kLabelWidth, ' ');
    Line(name + " " + text);
}

void Report::AddSetting(const char* name, const std::optional<std::string>& value, const std::string& none) {
    const bool absent = !value || value->empty();
    Add(name, name, absent ? nlohmann::json() : nlohmann::json(*value), absent ? none : *value);
}

void Report::AddDocument(const char* key, const std::string& text) {
    m_values[key] = text;
    if (m_json) return;
    std::fputs(std::exchange(m_lines, {}).c_str(), stderr);
    m_lines = IsTerminal(StandardStream::Output) ? ForTerminal(text) : text;
    if (!m_lines.ends_with('\n')) m_lines += '\n';
}

void Report::Line(const std::string& text) { m_lines += Printable(text) + "\n"; }

void Report::Print() {
    const std::string text = m_json ? m_values.dump(m_form == Form::Indented ? 2 : -1, ' ', false,
                                                    nlohmann::json::error_handler_t::replace) +
                                          "\n"
                                    : std::exchange(m_lines, {});
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
        throw CommandError("Cannot write the answer to standard output");
    }
}

}  // namespace wn
