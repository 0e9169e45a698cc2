// The settings of the host on Windows: the home is the machine itself, and the debugger output goes to the debugger.
#include "tools/wn/RegistryKey.h"
#include "tools/wn/Setting.h"

namespace wn {

void AddHostSettings(Settings& settings) {
    const UINT page = GetACP();
    settings.push_back(
        {"codePage", "code page", page, std::to_string(page), Setting::From::Registry, kCodePageKey.place("ACP")});
}

}  // namespace wn
