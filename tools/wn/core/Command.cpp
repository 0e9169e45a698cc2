#include "tools/wn/core/Command.h"

#include <CLI/CLI.hpp>
#include <charconv>

namespace wn {
namespace {

template <class Value>
CLI::Option* Add(CLI::App* command, const char* name, Value& value, const char* help) {
    return command->add_option(name, value, help)->type_name("")->required()->check(NotEmpty());
}

}  // namespace

CLI::Validator NotEmpty() {
    return {[](std::string& text) { return text.empty() ? std::string("must not be empty") : std::string(); }, ""};
}

CLI::Validator WholeNumber(std::uint64_t least, std::uint64_t most) {
    return {[least, most](std::string& text) {
                std::uint64_t number = 0;
                const char* const end = text.data() + text.size();
                const auto read = std::from_chars(text.data(), end, number);
                // The command-line library takes what begins with a zero for octal.
                const bool octal = text.size() > 1 && text.front() == '0';
                const bool fits = read.ec == std::errc() && read.ptr == end && number >= least && number <= most;
                if (fits && !octal) return std::string();
                return "must be a whole number from " + std::to_string(least) +
                       (most == ~std::uint64_t{0} ? "" : " to " + std::to_string(most));
            },
            ""};
}

CLI::Option* AddArgument(CLI::App* command, const char* name, std::string& value, const char* help) {
    return Add(command, name, value, help);
}

CLI::Option* AddArgument(CLI::App* command, const char* name, std::vector<std::string>& values, const char* help) {
    return Add(command, name, values, help);
}

}  // namespace wn
