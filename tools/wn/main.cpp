// wn: wnCOM and its configuration from the command line.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "common/CodePageText.h"
#include "tools/wn/Command.h"
#include "tools/wn/CommandLine.h"
#include "tools/wn/RegistryView.h"
#include "tools/wn/Texts.h"

namespace {

void PrintError(const std::string& text) { std::fprintf(stderr, "wn: %s\n", wn::Printable(text).c_str()); }

// The command as far as it was understood, such as "wn logging file".
std::string Understood(const CLI::App& app) {
    std::string name = "wn";
    for (const CLI::App* at = &app; !at->get_subcommands().empty();) {
        at = at->get_subcommands().front();
        name += " " + at->get_name();
    }
    return name;
}

int RefuseCommandLine(const CLI::App& app, const CLI::ParseError& error) {
    std::string what = error.what();
    // A misspelt command shows only as the lack of one.
    const std::vector<std::string> rest = app.remaining(true);
    if (dynamic_cast<const CLI::RequiredError*>(&error) && !rest.empty()) {
        what = (rest.front().starts_with("-") ? "There is no option " : "There is no command ") + rest.front();
    }
    PrintError(what + ". '" + Understood(app) + " --help' tells more");
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    const wn::Utf8Terminal terminal;
    bool json = false;
    CLI::App app("Talks to device services through wnCOM, and configures it.", "wn");
    app.set_version_flag("--version", "wn 1.0");
    app.add_flag("--json", json, "Answer with JSON instead of lines for people");
    wn::AddViewOption(app);
    app.require_subcommand(1);
    app.fallthrough();
    app.footer(
        "Beginning on a new machine:\n"
        "  wn register wnCOM.dll wnComponents.dll\n"
        "  wn directories --catalogue DIR --libraries DIR\n"
        "  wn config\n"
        "  wn capabilities --to ADDRESS\n"
        "  wn submit ticket.xml --to ADDRESS --data FILE\n"
        "'wn COMMAND --help' tells more. The settings belong to the home folder in WNCOM_HOME (on Windows: to the\n"
        "machine). Status: 0 done, 1 failed, 2 the command line was wrong.");
    wn::AddSubmitCommand(app, json);
    wn::AddCapabilitiesCommand(app, json);
    wn::AddDataCommands(app, json);
    wn::AddEventsCommands(app, json);
    wn::AddRegisterCommands(app, json);
    wn::AddLoggingCommands(app, json);
    wn::AddDirectoryCommands(app, json);
    wn::AddPortMapCommands(app, json);
    wn::AddConfigCommand(app, json);
    const std::vector<std::string> arguments = wn::Arguments(argc, argv);
    std::vector<const char*> texts;
    for (const std::string& argument : arguments) texts.push_back(argument.c_str());
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        if (wncom::WidenExactly(CP_UTF8, arguments[i])) continue;
        PrintError("Argument " + std::to_string(i) + " is not UTF-8 text");
        return 2;
    }
    try {
        app.parse(static_cast<int>(texts.size()), texts.data());
        return 0;
    } catch (const CLI::Success& asked) {
        return app.exit(asked);
    } catch (const CLI::ParseError& error) {
        return RefuseCommandLine(app, error);
    } catch (const std::exception& error) {
        PrintError(error.what());
        return 1;
    }
}
