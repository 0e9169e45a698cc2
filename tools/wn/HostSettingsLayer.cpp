// The settings of the host where the layer stands in for Windows.
#include <cstdlib>
#include <string_view>

#include "platform/include/wnplatform/inspect.h"
#include "tools/wn/RegistryKey.h"
#include "tools/wn/Setting.h"

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

}  // namespace wn
