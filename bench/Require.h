// How a benchmark gives up.
#pragma once

#include <stdexcept>
#include <string>

namespace wncom::bench {

// Throws std::runtime_error with the text when a benchmark cannot go on.
inline void Require(bool held, const std::string& what) {
    if (!held) throw std::runtime_error(what);
}

}  // namespace wncom::bench
