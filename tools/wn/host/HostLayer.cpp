// Hosts where the layer stands in for Windows: terminals take bytes as they are, and a home has one user, one
// registry and modules of one kind.
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "tools/wn/core/CommandError.h"
#include "tools/wn/host/Host.h"
#include "tools/wn/settings/RegistryKey.h"
#include "wnplatform/inspect.h"

namespace wn {
namespace {

// The variables in the order in which the layer asks them. A relative folder in the second does not count.
const char* HomeVariable() {
    for (const char* name : {"WNCOM_HOME", "XDG_STATE_HOME", "HOME"}) {
        const std::string value = std::getenv(name) ? std::getenv(name) : "";
        const bool relative = std::string_view(name) == "XDG_STATE_HOME" && !value.starts_with('/');
        if (!value.empty() && !relative) return name;
    }
    return nullptr;
}

}  // namespace

std::vector<std::string> Arguments(int argc, char** argv) { return {argv, argv + argc}; }

Utf8Terminal::Utf8Terminal() : m_previous(0) {}
Utf8Terminal::~Utf8Terminal() = default;

bool IsTerminal(StandardStream stream) {
    return isatty(stream == StandardStream::Output ? STDOUT_FILENO : STDERR_FILENO) != 0;
}

void ReadStandardInputAsBytes() {}

std::string DescribeHome() {
    const std::string& home = wnplatform::Home();
    const char* const variable = HomeVariable();
    const auto fail = [&](const std::string& reason, const std::string& hint) {
        throw CommandError("The home " + home + " cannot be used",
                           {.reason = reason, .hint = hint, .exit = ExitStatus::NotSetUp});
    };
    struct stat status;
    const std::string check = variable ? std::string("Check the variable ") + variable : "Make the folder";
    if (stat(home.c_str(), &status) != 0) fail(std::strerror(errno), check);
    if (!S_ISDIR(status.st_mode)) fail("It is not a folder", check);
    if (access(home.c_str(), R_OK | W_OK | X_OK) != 0) {
        fail(std::string(std::strerror(errno)) + "; it belongs to user " + std::to_string(status.st_uid),
             "Use a home of your own, or have its owner give you access");
    }
    // Whatever is set up leaves its registry; a home without one was made by looking at it.
    if (access((home + "/registry.reg").c_str(), F_OK) != 0) fail("Nothing was ever set up in it", check);
    return home;
}

// What can be read of a damaged registry is read; only a change is refused, so one is tried that changes nothing.
void RequireSoundRegistry() {
    try {
        kProductKey.Remove("wn: a value that nobody has");
    } catch (const CommandError& error) {
        throw CommandError("The registry " + wnplatform::Home() + "/registry.reg cannot be used",
                           {.reason = error.explanation().reason,
                            .hint = "Correct it in a text editor, or restore the file",
                            .exit = ExitStatus::NotSetUp});
    }
}

void AddHostSettings(Settings& settings) {
    const std::string& home = wnplatform::Home();
    const char* const variable = HomeVariable();
    settings.push_back({"home", "home", home, home, variable ? Setting::From::Environment : Setting::From::System,
                        variable ? std::string("variable ") + variable : "home folder of the user's account"});

    const bool utf8 = kCodePageKey.Read("ACP").value_or("") == std::to_string(CP_UTF8);
    const UINT page = GetACP();
    settings.push_back({"codePage", "code page", page, std::to_string(page),
                        utf8 ? Setting::From::Registry : Setting::From::Default, kCodePageKey.place("ACP")});

    settings.push_back(VariableSetting("debuggerOutput", "debugger output", "WNCOM_DEBUG_OUTPUT", "standard error"));
}

void AddViewOption(CLI::App&) {}
REGSAM ViewAccess() { return 0; }
void AddViewSetting(Settings&) {}

void AddAudienceOption(CLI::App*, Audience&) {}
std::string NameOf(Audience) { return {}; }
HRESULT CallFor(Audience, EntryPoint entryPoint) { return entryPoint(); }
std::string AdviceAfter(HRESULT, Audience) { return {}; }
std::string WhyNotLoaded(const std::string&) { return {}; }

}  // namespace wn
