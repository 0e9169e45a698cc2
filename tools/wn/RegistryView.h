// Which view of the registry the settings are read from and written to. Windows keeps one for programs of 32 bits and
// one for those of 64, and a library sees that of its own bitness; elsewhere there is one registry.
#pragma once

#include <windows.h>

#include "tools/wn/Setting.h"

namespace CLI {
class App;
}  // namespace CLI

namespace wn {

// The program's option for the view, where there is a choice.
void AddViewOption(CLI::App& app);

// What opening a key must ask for, besides its access.
REGSAM ViewAccess();

// Adds which view it is and why, where there is a choice.
void AddViewSetting(Settings& settings);

}  // namespace wn
