// A look into an XML answer.
#pragma once

#include <string>
#include <string_view>

namespace wncom::test {

// The text of the first element of a name, as it stands in the document.
inline std::string ElementText(std::string_view document, const std::string& name) {
    const std::size_t start = document.find("<" + name + ">");
    if (start == std::string_view::npos) return {};
    const std::size_t text = start + name.size() + 2;
    return std::string(document.substr(text, document.find('<', text) - text));
}

}  // namespace wncom::test
