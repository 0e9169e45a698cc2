// What the commands share on the command line.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
class Validator;
}  // namespace CLI

namespace wn {

// For an option or argument whose empty value would be taken for none.
CLI::Validator NotEmpty();
// For a number without a sign, in decimal digits.
CLI::Validator WholeNumber(std::uint64_t least, std::uint64_t most);

// An argument that has its place instead of a name, and must be there.
CLI::Option* AddArgument(CLI::App* command, const char* name, std::string& value, const char* help);
CLI::Option* AddArgument(CLI::App* command, const char* name, std::vector<std::string>& values, const char* help);

// Each adds its subcommands to the program's command line. json outlives them and is set when it is parsed.
void AddRegisterCommands(CLI::App& app, const bool& json);
void AddLoggingCommands(CLI::App& app, const bool& json);
void AddDirectoryCommands(CLI::App& app, const bool& json);
void AddPortMapCommands(CLI::App& app, const bool& json);
void AddSubmitCommand(CLI::App& app, const bool& json);
void AddJobCommands(CLI::App& app, const bool& json);
void AddCapabilitiesCommand(CLI::App& app, const bool& json);
void AddDataCommands(CLI::App& app, const bool& json);
void AddEventsCommands(CLI::App& app, const bool& json);
void AddConfigCommand(CLI::App& app, const bool& json);
void AddDoctorCommand(CLI::App& app, const bool& json);
// Below "events"; in a build without an HTTP library it says so when it is used.
void AddWatchCommand(CLI::App& events, const bool& json);

}  // namespace wn
