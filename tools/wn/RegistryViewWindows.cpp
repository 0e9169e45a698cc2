// Without the option it is the view in which wnCOM is registered, so that a wn of 64 bits configures a library of 32
// where that one looks.
#include "tools/wn/RegistryView.h"

#include <ole2.h>

#include <CLI/CLI.hpp>
#include <iterator>

#include "tools/wn/Texts.h"
#include "wncom/wnCOM.h"

namespace wn {
namespace {

constexpr int kOwnBits = static_cast<int>(8 * sizeof(void*));

int g_chosenBits = 0;  // 0: no option was given

REGSAM AccessTo(int bits) { return bits == 64 ? KEY_WOW64_64KEY : KEY_WOW64_32KEY; }

bool HasLibrary(int bits) {
    OLECHAR clsid[39];
    StringFromGUID2(wncom::CLSID_WendrelParent, clsid, static_cast<int>(std::size(clsid)));
    const std::string path = "SOFTWARE\\Classes\\CLSID\\" + ToUtf8(clsid) + "\\InprocServer32";
    for (const HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
        HKEY key = nullptr;
        if (RegOpenKeyExA(root, path.c_str(), 0, KEY_QUERY_VALUE | AccessTo(bits), &key) != ERROR_SUCCESS) continue;
        RegCloseKey(key);
        return true;
    }
    return false;
}

struct View {
    int bits;
    Setting::From from;
    const char* reason;
};

View CurrentView() {
    if (g_chosenBits != 0) return {g_chosenBits, Setting::From::CommandLine, "option --view"};
    if (HasLibrary(32)) return {32, Setting::From::System, "wnCOM is registered there"};
    if (HasLibrary(64)) return {64, Setting::From::System, "wnCOM is registered there only"};
    return {kOwnBits, Setting::From::System, "that of this wn, for wnCOM is not registered"};
}

}  // namespace

void AddViewOption(CLI::App& app) {
    app.add_option(
           "--view", g_chosenBits,
           "Settings of 32-bit or of 64-bit libraries (default: those of the registered wnCOM.dll, of the 32-bit "
           "one when there are both)")
        ->type_name("32|64")
        ->check(CLI::IsMember({32, 64}).description(""));
}

REGSAM ViewAccess() { return AccessTo(CurrentView().bits); }

void AddViewSetting(Settings& settings) {
    const View view = CurrentView();
    settings.push_back(
        {"registryView", "registry view", view.bits, std::to_string(view.bits) + " bits", view.from, view.reason});
}

}  // namespace wn
