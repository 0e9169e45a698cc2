// wn logging: where the library writes its log, and how much.
#include <CLI/CLI.hpp>
#include <memory>

#include "tools/wn/Command.h"
#include "tools/wn/RegistryKey.h"

namespace wn {
namespace {

// The components that read a configuration of their own; the default is for those that have none.
const char* const kComponents[] = {"CWendrel", "CWendrelParent", "JobControlFactory"};
constexpr std::size_t kLongestValue = 259;  // characters; what a component reads

struct Options {
    std::string component;  // empty: the default
    std::string path;
    unsigned level = 3;
    unsigned limit = 0;
};

std::string NameOf(const std::string& component) { return component.empty() ? "default" : component; }

void Write(const Options& options, const std::string& value, bool json) {
    if (value.size() > kLongestValue) {
        throw CommandError("The path is too long: a logging configuration holds at most " +
                           std::to_string(kLongestValue) + " characters");
    }
    kLoggingKey.Write(options.component, value);
    Report report(json);
    report.Add(NameOf(options.component).c_str(), NameOf(options.component).c_str(), value);
    report.Print();
}

void WriteFileForm(const Options& options, bool json) {
    if (options.path.find(',') != std::string::npos) {
        throw CommandError("A log path cannot hold a comma: it separates the fields of the configuration");
    }
    std::string value = "file," + options.path + ",";
    if (options.limit != 0) value += std::to_string(options.limit) + ",";
    Write(options, value + std::to_string(options.level), json);
}

void Show(bool json) {
    Report report(json);
    const std::string none = "not configured";
    const std::string fallback = kLoggingKey.Read("").value_or("");
    report.Add("default", "default", fallback, fallback.empty() ? none : fallback);
    for (const char* component : kComponents) {
        const std::string value = kLoggingKey.Read(component).value_or("");
        report.Add(component, component, value, value.empty() ? "as the default" : value);
    }
    report.Print();
}

void Remove(const Options& options, bool json) {
    kLoggingKey.Remove(options.component);
    Report report(json);
    report.Add(NameOf(options.component).c_str(), NameOf(options.component).c_str(), nullptr, "not configured");
    report.Print();
}

void AddTarget(CLI::App* command, Options& options) {
    command
        ->add_option("--for", options.component, "Component (default: all that have no configuration of their own)")
        ->check(CLI::IsMember({kComponents[0], kComponents[1], kComponents[2]}));
}

void AddLevel(CLI::App* command, Options& options) {
    command
        ->add_option("--level", options.level,
                     "1 errors, 2 failures worked around, 3 flow, 4 details, 5 calls, 8 everything")
        ->check(CLI::Range(0U, 8U))
        ->capture_default_str();
}

}  // namespace

void AddLoggingCommands(CLI::App& app, const bool& json) {
    CLI::App* logging = app.add_subcommand("logging", "Where the library writes its log, and how much");
    logging->require_subcommand(1);
    auto options = std::make_shared<Options>();

    CLI::App* file = logging->add_subcommand("file", "Write to a file that all processes share");
    file->add_option("PATH", options->path, "The log file")->required();
    file->add_option("--limit", options->limit, "Cut the file to its last KB when its last user ends")
        ->check(CLI::Range(1U, 1023U));
    AddLevel(file, *options);
    AddTarget(file, *options);
    file->callback([options, &json] { WriteFileForm(*options, json); });

    for (const auto& [name, help] :
         {std::pair{"console", "Write to standard output"}, std::pair{"debug", "Write to the debugger output"}}) {
        CLI::App* command = logging->add_subcommand(name, help);
        AddLevel(command, *options);
        AddTarget(command, *options);
        command->callback([options, form = std::string(name), &json] {
            Write(*options, form + "," + std::to_string(options->level), json);
        });
    }

    CLI::App* off = logging->add_subcommand("off", "Remove the configuration");
    AddTarget(off, *options);
    off->callback([options, &json] { Remove(*options, json); });

    logging->add_subcommand("show", "Show the configuration")->callback([&json] { Show(json); });
}

}  // namespace wn
