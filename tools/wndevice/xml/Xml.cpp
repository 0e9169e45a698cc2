#include "tools/wndevice/xml/Xml.h"

#include <libxml/parser.h>
#include <libxml/xmlerror.h>

#include <algorithm>
#include <new>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace wndevice {

namespace {

constexpr int kMostAttributes = 256;  // of one element

// libxml2 compares the attributes of an element each with each, and a few megabytes of them would take hours. Here
// they are counted roughly, which is enough: a text that is not well-formed is refused afterwards.
void CheckTags(std::string_view text) {
    constexpr std::pair<std::string_view, std::string_view> other[] = {
        {"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}};
    for (std::size_t at = text.find('<'); at < text.size(); at = text.find('<', at)) {
        std::string_view end = ">";
        for (const auto& [begin, itsEnd] : other) {
            if (text.substr(at).starts_with(begin)) end = itsEnd;
        }
        if (end == ">") {
            if (text.substr(at).starts_with("<!")) {
                throw std::invalid_argument("A document type declaration is not taken");
            }
            int attributes = 0;
            for (at = text.find_first_of(">\"'", at); at < text.size() && text[at] != '>';
                 at = text.find_first_of(">\"'", at)) {
                if (++attributes > kMostAttributes) {
                    throw std::invalid_argument("An element has more than " + std::to_string(kMostAttributes) +
                                                " attributes");
                }
                at = std::min(text.find(text[at], at + 1), text.size() - 1) + 1;
            }
        }
        at = text.find(end, at);
    }
}

}  // namespace

XmlDocument ParseXml(const std::string& text) {
    CheckTags(text);
    constexpr int options = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;
    XmlDocument document(xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr, options));
    if (!document) throw std::invalid_argument("The document is not well-formed: " + LastXmlError());
    if (document->intSubset) throw std::invalid_argument("A document type declaration is not taken");
    return document;
}

std::string LastXmlError() {
    const xmlError* const error = xmlGetLastError();
    std::string reason = error && error->message ? error->message : "unknown error";
    reason.erase(reason.find_last_not_of(" \n") + 1);
    return reason;
}

XmlDocument NewXml(const char* rootName) {
    XmlDocument document(xmlNewDoc(ToXml("1.0")));
    if (!document) throw std::bad_alloc();
    xmlNode* const root = xmlNewDocNode(document.get(), nullptr, ToXml(rootName), nullptr);
    if (!root) throw std::bad_alloc();
    xmlDocSetRootElement(document.get(), root);
    return document;
}

xmlNode& AddElement(xmlNode& parent, const char* name, const std::string& text) {
    xmlNode* const element = xmlNewTextChild(&parent, nullptr, ToXml(name), text.empty() ? nullptr : ToXml(text));
    if (!element) throw std::bad_alloc();
    return *element;
}

std::string XmlText(xmlDoc& document, XmlLayout layout) {
    xmlChar* bytes = nullptr;
    int count = 0;
    xmlDocDumpFormatMemoryEnc(&document, &bytes, &count, "UTF-8", layout == XmlLayout::Indented ? 1 : 0);
    const XmlString owner(bytes);
    if (!bytes) throw std::bad_alloc();
    return {reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(count)};
}

xmlNode& RootOf(const xmlDoc& document) { return *xmlDocGetRootElement(&document); }

xmlNode& RootNamed(const xmlDoc& document, const char* name) {
    xmlNode& root = RootOf(document);
    if (FromXml(root.name) != name) throw std::invalid_argument(std::string("The document is not a ") + name);
    return root;
}

std::vector<xmlNode*> Children(const xmlNode& parent, const char* name) {
    std::vector<xmlNode*> children;
    for (xmlNode* child = parent.children; child; child = child->next) {
        if (child->type == XML_ELEMENT_NODE && xmlStrEqual(child->name, ToXml(name))) children.push_back(child);
    }
    return children;
}

xmlNode* Child(const xmlNode& parent, const char* name) {
    const std::vector<xmlNode*> children = Children(parent, name);
    return children.empty() ? nullptr : children.front();
}

std::string ContentOf(const xmlNode& node) { return FromXml(XmlString(xmlNodeGetContent(&node)).get()); }

std::string ContentOfChild(const xmlNode& parent, const char* name) {
    const xmlNode* const child = Child(parent, name);
    return child ? ContentOf(*child) : std::string();
}

bool IsPlainText(const std::string& text) {
    return xmlCheckUTF8(ToXml(text)) != 0 && std::none_of(text.begin(), text.end(), [](char c) {
               const auto byte = static_cast<unsigned char>(c);
               return byte < 0x20 || byte == 0x7F;
           });
}

}  // namespace wndevice
