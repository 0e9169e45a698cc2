// What the service remembers of its clients, within bounds.
#pragma once

#include <cstddef>
#include <list>
#include <map>
#include <string>
#include <utility>

namespace wndevice {

// Values by id. When the table is full, the one that was not touched for longest goes. Belongs to one thread at a
// time.
template <class Value>
class RecentTable {
public:
    explicit RecentTable(std::size_t most) : m_most(most) {}

    // The value, touched; null for an unknown id.
    Value* Touch(const std::string& id) {
        const auto found = m_places.find(id);
        if (found == m_places.end()) return nullptr;
        m_entries.splice(m_entries.end(), m_entries, found->second);
        return &found->second->second;
    }
    // The id must be new.
    void Add(const std::string& id, Value value) {
        if (m_entries.size() == m_most) Remove(std::string(m_entries.front().first));
        m_places[id] = m_entries.emplace(m_entries.end(), id, std::move(value));
    }
    bool Remove(const std::string& id) {
        const auto found = m_places.find(id);
        if (found == m_places.end()) return false;
        m_entries.erase(found->second);
        m_places.erase(found);
        return true;
    }

private:
    using Entries = std::list<std::pair<std::string, Value>>;

    const std::size_t m_most;
    Entries m_entries;  // the one touched last is at the end
    std::map<std::string, typename Entries::iterator> m_places;
};

}  // namespace wndevice
