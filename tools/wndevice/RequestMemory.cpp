#include "tools/wndevice/RequestMemory.h"

#include <stdexcept>

#include "tools/wndevice/RandomId.h"

namespace wndevice {
namespace {

constexpr std::size_t kRemembered = 10000;

}  // namespace

std::string RequestMemory::Once(const std::string& requestId, const std::function<std::string()>& make) {
    if (requestId.empty()) return make();
    if (!IsId(requestId)) throw std::invalid_argument("The request id has not the right form");
    // Held while it is made: a repeated request that overtakes its first must not make a second thing.
    const std::lock_guard guard(m_lock);
    const auto repeated = m_made.find(requestId);
    if (repeated != m_made.end()) return repeated->second;
    const std::string made = make();
    if (m_made.size() == kRemembered) m_made.clear();
    if (!made.empty()) m_made[requestId] = made;
    return made;
}

}  // namespace wndevice
