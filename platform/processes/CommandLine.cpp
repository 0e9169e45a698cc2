#include "platform/processes/CommandLine.h"

namespace wnplatform {
namespace {

bool IsBlank(char c) noexcept { return c == ' ' || c == '\t'; }

void SkipBlanks(std::string_view& line) noexcept {
    while (!line.empty() && IsBlank(line.front())) line.remove_prefix(1);
}

std::string TakeProgram(std::string_view& line) {
    std::string program;
    bool quoted = false;
    while (!line.empty() && (quoted || !IsBlank(line.front()))) {
        if (line.front() == '"') {
            quoted = !quoted;
        } else {
            program += line.front();
        }
        line.remove_prefix(1);
    }
    return program;
}

// Backslashes stand for themselves, but before a quote: there two make one, and an odd one makes the quote a
// character.
void TakeBackslashes(std::string_view& line, std::string& argument) {
    std::size_t count = 0;
    while (count < line.size() && line[count] == '\\') ++count;
    line.remove_prefix(count);
    const bool beforeQuote = line.starts_with('"');
    argument.append(beforeQuote ? count / 2 : count, '\\');
    if (!beforeQuote || count % 2 == 0) return;
    argument += '"';
    line.remove_prefix(1);
}

std::string TakeArgument(std::string_view& line) {
    std::string argument;
    bool quoted = false;
    while (!line.empty() && (quoted || !IsBlank(line.front()))) {
        if (line.front() == '\\') {
            TakeBackslashes(line, argument);
        } else if (quoted && line.starts_with("\"\"")) {
            argument += '"';
            line.remove_prefix(2);
        } else {
            if (line.front() == '"') {
                quoted = !quoted;
            } else {
                argument += line.front();
            }
            line.remove_prefix(1);
        }
    }
    return argument;
}

}  // namespace

std::vector<std::string> SplitCommandLine(std::string_view line) {
    SkipBlanks(line);
    std::vector<std::string> arguments{TakeProgram(line)};
    for (SkipBlanks(line); !line.empty(); SkipBlanks(line)) arguments.push_back(TakeArgument(line));
    return arguments;
}

}  // namespace wnplatform
