#include "libraries/http/SessionHandover.h"

#include <new>
#include <utility>

namespace wncom::http {
namespace {

SessionHandover g_handover;

}  // namespace

void SessionHandover::Leave(const std::string& service, const std::string& session) noexcept {
    const std::lock_guard guard(m_lock);
    try {
        m_entries[GetCurrentThreadId()] = {service, session};
    } catch (const std::bad_alloc&) {
        m_entries.erase(GetCurrentThreadId());
    }
}

std::string SessionHandover::Take(const std::string& service) {
    const std::lock_guard guard(m_lock);
    const auto left = m_entries.extract(GetCurrentThreadId());
    if (left.empty() || left.mapped().service != service) return {};
    return left.mapped().session;
}

void SessionHandover::Forget() noexcept {
    const std::lock_guard guard(m_lock);
    m_entries.erase(GetCurrentThreadId());
}

SessionHandover& SharedHandover() noexcept { return g_handover; }

}  // namespace wncom::http
