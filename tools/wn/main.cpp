// wn: submit jobs and configure wnCOM from the command line.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>

#include "tools/wn/Command.h"

int main(int argc, char** argv) {
    bool json = false;
    CLI::App app("Talks to device services through wnCOM, and configures it.", "wn");
    app.set_version_flag("--version", "wn 1.0");
    app.add_flag("--json", json, "Answer with JSON instead of lines for people");
    app.require_subcommand(1);
    app.fallthrough();
    app.footer(
        "The settings belong to the home folder in WNCOM_HOME (on Windows: to the machine).\n"
        "Status: 0 done, 1 failed, 2 the command line was wrong.");
    wn::AddSubmitCommand(app, json);
    wn::AddRegisterCommands(app, json);
    wn::AddLoggingCommands(app, json);
    wn::AddDirectoryCommands(app, json);
    wn::AddPortMapCommands(app, json);
    try {
        app.parse(argc, argv);
        return 0;
    } catch (const CLI::Success& asked) {
        return app.exit(asked);
    } catch (const CLI::ParseError& error) {
        std::fprintf(stderr, "wn: %s. 'wn --help' shows the commands.\n", error.what());
        return 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "wn: %s\n", error.what());
        return 1;
    }
}
