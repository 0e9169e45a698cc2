// A home has one user and modules of one kind.
#include "tools/wn/Registration.h"

namespace wn {

void AddAudienceOption(CLI::App*, Audience&) {}

std::string NameOf(Audience) { return {}; }

HRESULT CallFor(Audience, EntryPoint entryPoint) { return entryPoint(); }

std::string AdviceAfter(HRESULT, Audience) { return {}; }

std::string WhyNotLoaded(const std::string&) { return {}; }

}  // namespace wn
