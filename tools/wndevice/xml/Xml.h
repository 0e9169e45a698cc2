// XML documents by libxml2, which knows namespaces.
#pragma once

#include <libxml/tree.h>

#include <memory>
#include <string>
#include <vector>

namespace wndevice {

struct XmlDeleter {
    void operator()(xmlDoc* document) const noexcept { xmlFreeDoc(document); }
    void operator()(xmlChar* text) const noexcept { xmlFree(text); }
};
using XmlDocument = std::unique_ptr<xmlDoc, XmlDeleter>;
using XmlString = std::unique_ptr<xmlChar, XmlDeleter>;

// libxml2's texts, as it wants and gives them; a null text gives an empty one.
inline const xmlChar* ToXml(const std::string& text) { return reinterpret_cast<const xmlChar*>(text.c_str()); }
inline std::string FromXml(const xmlChar* text) { return text ? reinterpret_cast<const char*>(text) : ""; }

// Throws std::invalid_argument with a reason when the text is not a well-formed document, or declares a document
// type.
XmlDocument ParseXml(const std::string& text);
// What libxml2 said last on this thread.
std::string LastXmlError();

// A new document with its root element; both throw std::bad_alloc.
XmlDocument NewXml(const char* rootName);
xmlNode& AddElement(xmlNode& parent, const char* name, const std::string& text = {});
// The document in UTF-8, an element a line or as it is.
enum class XmlLayout { AsItIs, Indented };
std::string XmlText(xmlDoc& document, XmlLayout layout = XmlLayout::Indented);

xmlNode& RootOf(const xmlDoc& document);
// The root, which must have the name. Throws std::invalid_argument.
xmlNode& RootNamed(const xmlDoc& document, const char* name);
// The child elements of a name, whatever their namespace.
std::vector<xmlNode*> Children(const xmlNode& parent, const char* name);
// The first of them; null when there is none.
xmlNode* Child(const xmlNode& parent, const char* name);
// The text of a node with all that it holds.
std::string ContentOf(const xmlNode& node);
// The same of a child; empty without one.
std::string ContentOfChild(const xmlNode& parent, const char* name);

// Whether a text may stand in a document of ours: UTF-8 without control characters.
bool IsPlainText(const std::string& text);

}  // namespace wndevice
