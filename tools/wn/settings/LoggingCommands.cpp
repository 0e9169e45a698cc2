// wn logging: where the library writes its log, and how much.
#include <CLI/CLI.hpp>
#include <memory>

#include "tools/wn/core/Command.h"
#include "tools/wn/core/CommandError.h"
#include "tools/wn/core/Paths.h"
#include "tools/wn/core/Report.h"
#include "tools/wn/settings/RegistryKey.h"

namespace wn {
namespace {

// The components that read a configuration of their own; the default is for those that have none.
const char* const kComponents[] = {"CWendrel", "CWendrelParent", "JobControlFactory"};
constexpr std::size_t kLongestPath = 238;  // bytes; beyond it the name of the file's mutex is too long

struct Options {
    std::string component;  // empty: the default
    std::string path;
    unsigned level = 3;
    unsigned limit = 0;
};

const char* NameOf(const std::string& component) { return component.empty() ? "default" : component.c_str(); }

void Write(const Options& options, const std::string& value, bool json) {
    kLoggingKey.Write(options.component, value);
    Report report(json);
    report.AddSetting(NameOf(options.component), value, "");
    report.Print();
}

void WriteFileForm(const Options& options, bool json) {
    const std::string path = WholeFile(options.path);
    if (path.find(',') != std::string::npos) {
        throw WrongInput("The log path holds a comma, which separates the fields of the configuration: " + path,
                         "Use a path without one");
    }
    if (NarrowPath(path).size() > kLongestPath) {
        throw WrongInput("The log path is longer than " + std::to_string(kLongestPath) + " bytes: " + path);
    }
    std::string value = "file," + path + ",";
    if (options.limit != 0) value += std::to_string(options.limit) + ",";
    Write(options, value + std::to_string(options.level), json);
}

void Show(bool json) {
    Report report(json);
    report.AddSetting("default", kLoggingKey.Read(""), "not configured");
    for (const char* component : kComponents) {
        report.AddSetting(component, kLoggingKey.Read(component), "as the default");
    }
    report.Print();
}

void Remove(const Options& options, bool json) {
    kLoggingKey.Remove(options.component);
    Report report(json);
    report.AddSetting(NameOf(options.component), std::nullopt, "not configured");
    report.Print();
}

void AddTarget(CLI::App* command, Options& options) {
    command
        ->add_option(
            "--for", options.component,
            "CWendrel, CWendrelParent or JobControlFactory (default: all without a configuration of their own)")
        ->type_name("COMPONENT")
        ->check(CLI::IsMember({kComponents[0], kComponents[1], kComponents[2]}).description(""));
}

void AddLevel(CLI::App* command, Options& options) {
    command
        ->add_option("--level", options.level,
                     "1 errors, 2 failures worked around, 3 flow, 4 details, 5 calls, 8 everything")
        ->type_name("0-8")
        ->check(WholeNumber(0, 8))
        ->capture_default_str();
}

}  // namespace

void AddLoggingCommands(CLI::App& app, const bool& json) {
    CLI::App* logging = app.add_subcommand("logging", "Where the library writes its log, and how much");
    logging->require_subcommand(1);
    logging->footer(
        "A program takes the change over when it next creates its first agent. 'wn logging COMMAND --help' tells more.");
    auto options = std::make_shared<Options>();

    CLI::App* file = logging->add_subcommand("file", "Write to a file that all processes share");
    AddArgument(file, "PATH", options->path, "The log file; its directory must exist");
    file->add_option("--limit", options->limit, "Cut the file to its last KB when its last user ends, 1 to 1023")
        ->type_name("KB")
        ->check(WholeNumber(1, 1023));
    file->footer("Example:\n  wn logging file /var/log/wncom.log --level 3 --limit 500");
    AddLevel(file, *options);
    AddTarget(file, *options);
    file->callback([options, &json] { WriteFileForm(*options, json); });

    for (const auto& [name, help] :
         {std::pair{"console", "Write to standard output"}, std::pair{"debug", "Write to the debugger output"}}) {
        CLI::App* command = logging->add_subcommand(name, help);
        AddLevel(command, *options);
        AddTarget(command, *options);
        command->footer(std::string("Example:\n  wn logging ") + name + " --level 5 --for CWendrel");
        command->callback([options, form = std::string(name), &json] {
            Write(*options, form + "," + std::to_string(options->level), json);
        });
    }

    CLI::App* off = logging->add_subcommand("off", "Remove the configuration");
    AddTarget(off, *options);
    off->footer("Example:\n  wn logging off --for CWendrel");
    off->callback([options, &json] { Remove(*options, json); });

    CLI::App* show = logging->add_subcommand("show", "Show the configuration");
    show->footer("Example:\n  wn logging show --json");
    show->callback([&json] { Show(json); });
}

}  // namespace wn
