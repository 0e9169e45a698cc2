#include "components/xml/ChildPath.h"

namespace wncom::components {
namespace {

struct Step {
    std::string name;
    std::size_t position = 0;  // 0: all of the name
};

// A longer number is left to the general engine: it selects nothing in any document of a size that is accepted.
constexpr std::size_t kMostDigits = 9;

bool IsNameStart(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

std::size_t CountWhile(std::string_view text, bool (*matches)(char)) {
    std::size_t count = 0;
    while (count < text.size() && matches(text[count])) ++count;
    return count;
}

// Takes "name" or "name[7]" off the text.
bool TakeStep(std::string_view& text, Step& step) {
    if (text.empty() || !IsNameStart(text.front())) return false;
    const std::size_t length =
        CountWhile(text, [](char c) { return IsNameStart(c) || IsDigit(c) || c == '-' || c == '.'; });
    step.name = text.substr(0, length);
    text.remove_prefix(length);
    if (!text.starts_with('[')) return true;

    const std::size_t digits = CountWhile(text.substr(1), IsDigit);
    if (digits == 0 || digits > kMostDigits || !text.substr(1 + digits).starts_with(']')) return false;
    for (const char digit : text.substr(1, digits)) {
        step.position = step.position * 10 + static_cast<std::size_t>(digit - '0');
    }
    text.remove_prefix(digits + 2);
    return step.position > 0;
}

std::optional<std::vector<Step>> Parse(std::string_view query) {
    if (!query.starts_with('.')) return std::nullopt;
    query.remove_prefix(1);
    std::vector<Step> steps;
    while (query.starts_with('/')) {
        query.remove_prefix(1);
        Step step;
        if (!TakeStep(query, step)) return std::nullopt;
        steps.push_back(std::move(step));
    }
    if (steps.empty() || !query.empty()) return std::nullopt;
    return steps;
}

}  // namespace

std::optional<std::vector<pugi::xml_node>> ChildWalker::Find(pugi::xml_node top, std::string_view query) {
    const std::optional<std::vector<Step>> steps = Parse(query);
    if (!steps) return std::nullopt;
    std::vector<pugi::xml_node> nodes = {top};
    for (const Step& step : *steps) {
        std::vector<pugi::xml_node> next;
        for (const pugi::xml_node node : nodes) {
            if (step.position == 0) {
                for (const pugi::xml_node child : node.children(step.name.c_str())) next.push_back(child);
            } else if (const pugi::xml_node child = Child(node, step.name, step.position)) {
                next.push_back(child);
            }
        }
        nodes = std::move(next);
    }
    return nodes;
}

pugi::xml_node ChildWalker::Child(pugi::xml_node parent, const std::string& name, std::size_t position) {
    Place& place = m_places[{parent.internal_object(), name}];
    if (place.position == 0 || place.position > position) place = {1, parent.child(name.c_str())};
    for (; place.node && place.position < position; ++place.position) {
        place.node = place.node.next_sibling(name.c_str());
    }
    return place.node;
}

}  // namespace wncom::components
