// Terminals of hosts without Windows take bytes as they are.
#include "tools/wn/CommandLine.h"

namespace wn {

std::vector<std::string> Arguments(int argc, char** argv) { return {argv, argv + argc}; }

Utf8Terminal::Utf8Terminal() : m_previous(0) {}

Utf8Terminal::~Utf8Terminal() = default;

}  // namespace wn
