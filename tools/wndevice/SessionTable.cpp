#include "tools/wndevice/SessionTable.h"

#include "tools/wndevice/RandomId.h"

namespace wndevice {
namespace {

constexpr std::chrono::hours kIdleLimit{1};

}  // namespace

std::string SessionTable::Start(const std::string& replaced) {
    const std::string id = NewId();
    const std::lock_guard guard(m_lock);
    ForgetIdle();
    m_lastUse.erase(replaced);
    m_lastUse[id] = Clock::now();
    return id;
}

bool SessionTable::Use(const std::string& id) {
    const std::lock_guard guard(m_lock);
    ForgetIdle();
    const auto found = m_lastUse.find(id);
    if (found == m_lastUse.end()) return false;
    found->second = Clock::now();
    return true;
}

bool SessionTable::End(const std::string& id) {
    const std::lock_guard guard(m_lock);
    ForgetIdle();
    return m_lastUse.erase(id) != 0;
}

void SessionTable::ForgetIdle() {
    const auto oldest = Clock::now() - kIdleLimit;
    std::erase_if(m_lastUse, [&](const auto& session) { return session.second < oldest; });
}

}  // namespace wndevice
