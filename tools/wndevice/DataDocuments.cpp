#include "tools/wndevice/DataDocuments.h"

#include <stdexcept>

#include "tools/wndevice/Xml.h"
#include "tools/wndevice/XmlWriter.h"

namespace wndevice {
namespace {

constexpr std::size_t kMostChanges = 1000;
constexpr std::size_t kLongestValue = std::size_t{1} << 20;  // bytes

bool IsElement(const xmlNode& node, const char* name) {
    return node.type == XML_ELEMENT_NODE && FromXml(node.name) == name;
}

xmlNode& RootNamed(xmlDoc& document, const char* name) {
    xmlNode* const root = xmlDocGetRootElement(&document);
    if (!IsElement(*root, name)) throw std::invalid_argument(std::string("The document is no ") + name);
    return *root;
}

xmlNode* Child(const xmlNode& parent, const char* name) {
    for (xmlNode* child = parent.children; child; child = child->next) {
        if (IsElement(*child, name)) return child;
    }
    return nullptr;
}

std::string TextOfChild(const xmlNode& parent, const char* name) {
    xmlNode* const child = Child(parent, name);
    return child ? ContentOf(*child) : std::string();
}

}  // namespace

DataRequest ParseDataRequest(const std::string& text) {
    const XmlDocument document = ParseXml(text);
    const xmlNode& root = RootNamed(*document, "dataRequest");
    return {TextOfChild(root, "path"), TextOfChild(root, "prefixes")};
}

SetDocument ParseSetDocument(const std::string& text) {
    const XmlDocument document = ParseXml(text);
    const xmlNode& root = RootNamed(*document, "setData");
    SetDocument result;
    result.prefixes = TextOfChild(root, "prefixes");
    for (const xmlNode* child = root.children; child; child = child->next) {
        if (!IsElement(*child, "set")) continue;
        if (!Child(*child, "path") || !Child(*child, "value")) {
            throw std::invalid_argument("A set element lacks its path or its value");
        }
        if (result.changes.size() == kMostChanges) {
            throw std::invalid_argument("The document sets more than " + std::to_string(kMostChanges) + " values");
        }
        result.changes.push_back({TextOfChild(*child, "path"), TextOfChild(*child, "value")});
        if (result.changes.back().value.size() > kLongestValue) {
            throw std::invalid_argument("A value is longer than " + std::to_string(kLongestValue) + " bytes");
        }
    }
    if (result.changes.empty()) throw std::invalid_argument("The document sets no values");
    return result;
}

std::string FailureDetails(const std::vector<SetFailure>& failures) {
    XmlWriter document("setFailures");
    for (const SetFailure& failure : failures) {
        pugi::xml_node node = document.root.append_child("failure");
        AddText(node, "path", failure.path);
        AddText(node, "reason", failure.reason);
    }
    return document.Text();
}

}  // namespace wndevice
