// Writing the small documents of the service.
#pragma once

#include <pugixml.hpp>
#include <sstream>
#include <string>

namespace wndevice {

// A new document with its XML declaration; the caller fills its root element.
class XmlWriter {
public:
    explicit XmlWriter(const char* rootName) {
        pugi::xml_node declaration = m_document.append_child(pugi::node_declaration);
        declaration.append_attribute("version") = "1.0";
        declaration.append_attribute("encoding") = "UTF-8";
        root = m_document.append_child(rootName);
    }
    std::string Text() const {
        std::ostringstream text;
        m_document.save(text, "  ");
        return text.str();
    }

private:
    pugi::xml_document m_document;

public:
    pugi::xml_node root;
};

// One child element with a text.
inline void AddText(pugi::xml_node parent, const char* name, const std::string& text) {
    parent.append_child(name).text().set(text.c_str());
}

}  // namespace wndevice
