#include "libraries/http/Connections.h"

#include <algorithm>
#include <new>
#include <stdexcept>
#include <utility>

namespace wncom::http {
namespace {

constexpr std::size_t kMostIdle = 8;

Connections g_connections;

}  // namespace

void Connections::Enter() {
    const std::lock_guard guard(m_lock);
    if (!m_started) {
        m_idle.reserve(kMostIdle);
        if (curl_global_init(CURL_GLOBAL_DEFAULT) != CURLE_OK) throw std::runtime_error("libcurl does not start");
        m_started = true;
    }
    ++m_objects;
}

void Connections::Leave() noexcept {
    const std::lock_guard guard(m_lock);
    --m_objects;
}

void Connections::CloseWhenUnused() noexcept {
    const std::lock_guard guard(m_lock);
    if (!m_started || m_objects != 0) return;
    m_idle.clear();
    curl_global_cleanup();
    m_started = false;
}

Connections::Handle Connections::Take(const std::string& origin) {
    {
        const std::lock_guard guard(m_lock);
        const auto last =
            std::find_if(m_idle.rbegin(), m_idle.rend(), [&](const Idle& i) { return i.origin == origin; });
        if (last != m_idle.rend()) {
            Handle handle = std::move(last->handle);
            m_idle.erase(std::next(last).base());
            return handle;
        }
    }
    Handle handle(curl_easy_init());
    if (!handle) throw std::bad_alloc();
    return handle;
}

void Connections::Keep(const std::string& origin, Handle handle) noexcept {
    // The connection stays; what goes are the options, some of which point into the call that is over.
    curl_easy_reset(handle.get());
    try {
        Idle idle{origin, std::move(handle)};
        const std::lock_guard guard(m_lock);
        if (m_idle.size() == kMostIdle) m_idle.erase(m_idle.begin());
        m_idle.push_back(std::move(idle));
    } catch (const std::bad_alloc&) {
        // The handle is closed instead: the next call opens another connection.
    }
}

Connections& SharedConnections() noexcept { return g_connections; }

}  // namespace wncom::http
