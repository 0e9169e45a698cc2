#include "tools/wn/Command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>

#include "tools/wn/Texts.h"

namespace wn {
namespace {

constexpr std::size_t kLabelWidth = 17;  // characters

std::string SystemText(DWORD code) {
    char* text = nullptr;
    const DWORD length = FormatMessageA(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code,
        MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), reinterpret_cast<LPSTR>(&text), 0, nullptr);
    std::string result(text ? text : "", length);
    LocalFree(text);
    while (!result.empty() && (result.back() == '\n' || result.back() == '\r' || result.back() == '.')) {
        result.pop_back();
    }
    // What the text is about stands before it.
    if (const std::size_t insert = result.find("%1"); insert != std::string::npos) {
        result.replace(insert, 2, "the file");
    }
    return result.empty() ? "Unknown failure" : FromNarrow(result);
}

}  // namespace

std::string StatusText(HRESULT status) {
    char number[16];
    std::snprintf(number, sizeof(number), "0x%08X", static_cast<unsigned>(status));
    return SystemText(static_cast<DWORD>(status)) + " (" + number + ")";
}

std::string ErrorText(DWORD code) { return SystemText(code) + " (" + std::to_string(code) + ")"; }

CLI::Validator NotEmpty() {
    return {[](std::string& text) { return text.empty() ? std::string("must not be empty") : std::string(); }, ""};
}

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
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        std::string line = text.substr(at, end - at);
        if (line.ends_with('\r')) line.pop_back();
        std::replace(line.begin(), line.end(), '\t', ' ');
        Line(line);
        at = end + 1;
    }
}

void Report::Line(const std::string& text) { m_lines += Printable(text) + "\n"; }

void Report::Print() {
    const std::string text = m_json ? m_values.dump(m_form == Form::Indented ? 2 : -1, ' ', false,
                                                    nlohmann::json::error_handler_t::replace) +
                                          "\n"
                                    : m_lines;
    m_lines.clear();
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
        throw CommandError("Cannot write the answer to standard output");
    }
}

}  // namespace wn
