// Queries that are nothing but child steps, such as "./transportdlls/jobcontrol/dll[7]/type".
#pragma once

#include <pugixml.hpp>

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace wncom::components {

// Remembers where the last position was found below each element: a reader that asks for dll[1], dll[2], dll[3] and
// so on walks each list once, where a general query engine walks it from its start for each position. Forget it with
// the document.
class ChildWalker {
public:
    // The nodes in document order, those that the XPath of the same text selects from the top element; nothing when
    // the query is of any other form.
    std::optional<std::vector<pugi::xml_node>> Find(pugi::xml_node top, std::string_view query);
    void Forget() { m_places.clear(); }

private:
    struct Place {
        std::size_t position = 0;  // from 1
        pugi::xml_node node;       // null when there are fewer
    };

    pugi::xml_node Child(pugi::xml_node parent, const std::string& name, std::size_t position);

    // By the parent and the name of its children.
    std::map<std::pair<const void*, std::string>, Place> m_places;
};

}  // namespace wncom::components
