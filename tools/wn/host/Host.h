// What each host does in its own way: HostLayer.cpp and HostWindows.cpp.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "tools/wn/settings/Setting.h"

namespace CLI {
class App;
}  // namespace CLI

namespace wn {

// The program's arguments and its terminal

// The arguments that main was given, the program's name first: in UTF-8 where the host knows them as wide texts, else
// as their bytes are.
std::vector<std::string> Arguments(int argc, char** argv);

// While it lives, what the program writes to a terminal is taken for UTF-8.
class Utf8Terminal {
public:
    Utf8Terminal();
    Utf8Terminal(const Utf8Terminal&) = delete;
    Utf8Terminal& operator=(const Utf8Terminal&) = delete;
    ~Utf8Terminal();

private:
    [[maybe_unused]] unsigned m_previous;  // code page; 0 when there is none to go back to
};

enum class StandardStream { Output, Error };
bool IsTerminal(StandardStream stream);
// From now on the bytes of standard input arrive as they are.
void ReadStandardInputAsBytes();

// Settings

// What the settings belong to, for a person; throws CommandError when nothing can be kept there.
std::string DescribeHome();
// Throws CommandError when the registry is damaged, which must not pass for one that holds nothing.
void RequireSoundRegistry();
// Adds the settings that only this host has.
void AddHostSettings(Settings& settings);

// Windows keeps one view of the registry for programs of 32 bits and one for those of 64, and a library sees that of
// its own bitness; elsewhere there is one registry.
//
// The program's option for the view that the settings are read from and written to, where there is a choice.
void AddViewOption(CLI::App& app);
// What opening a key must ask for, besides its access.
REGSAM ViewAccess();
// Adds which view it is and why, where there is a choice.
void AddViewSetting(Settings& settings);

// Registration of modules

// On Windows everyone on the machine, which takes an administrator's rights, or the current user alone. A home of the
// layer has one user: there everyone is that one.
enum class Audience { Everyone, CurrentUser };
// The command's option for the audience, where there is a choice.
void AddAudienceOption(CLI::App* command, Audience& audience);
// "all users"; empty where there is no choice.
std::string NameOf(Audience audience);

// An entry point of a module that registers or unregisters it.
using EntryPoint = HRESULT(STDAPICALLTYPE*)();
// Calls it, unchanged as it is, so that it works on the audience's part of the registry; gives its status, or that of
// the host when that part cannot be opened. One thread at a time.
HRESULT CallFor(Audience audience, EntryPoint entryPoint);

// What to try after a failure; empty when there is nothing to say.
std::string AdviceAfter(HRESULT status, Audience audience);
// Why a file cannot be loaded as a module and what to do, where its own bytes tell; else empty.
std::string WhyNotLoaded(const std::string& path);

}  // namespace wn
