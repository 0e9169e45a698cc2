// wn: wnCOM and its configuration from the command line.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <string>
#include <vector>

#include "tools/wn/core/Command.h"
#include "tools/wn/core/CommandError.h"
#include "tools/wn/core/Texts.h"
#include "tools/wn/host/Host.h"

namespace {

constexpr const char* kFooter =
    "Beginning on a new machine:\n"
    "  wn register wnCOM.dll wnComponents.dll\n"
    "  wn directories --catalogue DIR --libraries DIR\n"
    "  wn doctor\n"
    "  wn capabilities --to ADDRESS\n"
    "  wn submit ticket.xml --to ADDRESS --data FILE\n"
    "'wn COMMAND --help' tells more. The settings belong to the home folder in WNCOM_HOME (on Windows: to the\n"
    "machine). A FILE of - is standard input.\n"
    "Exit status: 0 done, 1 failed, 2 the command line or an input file is wrong (nothing was sent or written),\n"
    "3 wnCOM is not set up for this, 4 --timeout is over, 5 the job was submitted but its data was not delivered,\n"
    "130 ended by Ctrl-C.";

// The command as far as it was understood, such as "wn logging file".
std::string Understood(const CLI::App& app) {
    std::string name = "wn";
    for (const CLI::App* at = &app; !at->get_subcommands().empty();) {
        at = at->get_subcommands().front();
        name += " " + at->get_name();
    }
    return name;
}

wn::WrongInput Refusal(const CLI::App& app, const CLI::ParseError& error) {
    std::string what = error.what();
    // A misspelt command shows only as the lack of one.
    const std::vector<std::string> rest = app.remaining(true);
    if (dynamic_cast<const CLI::RequiredError*>(&error) && !rest.empty()) {
        what = (rest.front().starts_with("-") ? "There is no option " : "There is no command ") + rest.front();
    }
    return wn::WrongInput(what, "'" + Understood(app) + " --help' tells more");
}

int Fail(const wn::CommandError& error, bool json) {
    wn::PrintFailure(error, json);
    return static_cast<int>(error.explanation().exit);
}

}  // namespace

int main(int argc, char** argv) {
    const wn::Utf8Terminal terminal;
    const std::vector<std::string> arguments = wn::Arguments(argc, argv);
    // A command line that is refused is answered in the form that it asks for.
    bool json = std::find(arguments.begin(), arguments.end(), "--json") != arguments.end();
    CLI::App app("Talks to device services through wnCOM, and configures it.", "wn");
    app.set_version_flag("--version", "wn " WNCOM_VERSION);
    app.add_flag("--json", json, "Answer with JSON instead of lines for people");
    wn::AddViewOption(app);
    app.require_subcommand(1);
    app.fallthrough();
    app.footer(kFooter);
    wn::AddSubmitCommand(app, json);
    wn::AddJobCommands(app, json);
    wn::AddCapabilitiesCommand(app, json);
    wn::AddDataCommands(app, json);
    wn::AddEventsCommands(app, json);
    wn::AddRegisterCommands(app, json);
    wn::AddLoggingCommands(app, json);
    wn::AddDirectoryCommands(app, json);
    wn::AddPortMapCommands(app, json);
    wn::AddConfigCommand(app, json);
    wn::AddDoctorCommand(app, json);
    std::vector<const char*> texts;
    for (const std::string& argument : arguments) texts.push_back(argument.c_str());
    try {
        for (std::size_t i = 1; i < arguments.size(); ++i) {
            if (wn::IsUtf8(arguments[i])) continue;
            throw wn::WrongInput("Argument " + std::to_string(i) + " is not UTF-8 text");
        }
        app.parse(static_cast<int>(texts.size()), texts.data());
        return 0;
    } catch (const CLI::Success& asked) {
        return app.exit(asked);
    } catch (const CLI::ParseError& error) {
        return Fail(Refusal(app, error), json);
    } catch (const wn::CommandError& error) {
        return Fail(error, json);
    } catch (const std::exception& error) {
        return Fail(wn::CommandError(error.what()), json);
    }
}
