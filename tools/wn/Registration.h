// For whom a module is registered, and what a host has to say when that fails.
#pragma once

#include <windows.h>

#include <string>

namespace CLI {
class App;
}  // namespace CLI

namespace wn {

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
// the host when that part cannot be had. One thread at a time.
HRESULT CallFor(Audience audience, EntryPoint entryPoint);

// What to try instead, as a sentence with a leading ". "; empty when there is nothing to say.
std::string AdviceAfter(HRESULT status, Audience audience);
// Why a file could not be loaded as a module and what to do, where its own bytes tell; else empty.
std::string WhyNotLoaded(const std::string& path);

}  // namespace wn
