// The registry of a home is the same for every program: there is nothing to choose and nothing to tell.
#include "tools/wn/RegistryView.h"

namespace wn {

void AddViewOption(CLI::App&) {}

REGSAM ViewAccess() { return 0; }

void AddViewSetting(Settings&) {}

}  // namespace wn
