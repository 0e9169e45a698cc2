// XML with namespaces, by libxml2: pugixml's paths know none.
#pragma once

#include <libxml/tree.h>
#include <libxml/xpath.h>

#include <memory>
#include <string>

namespace wndevice {

struct XmlDeleter {
    void operator()(xmlDoc* document) const noexcept { xmlFreeDoc(document); }
    void operator()(xmlXPathContext* context) const noexcept { xmlXPathFreeContext(context); }
    void operator()(xmlXPathObject* object) const noexcept { xmlXPathFreeObject(object); }
    void operator()(xmlChar* text) const noexcept { xmlFree(text); }
};
using XmlDocument = std::unique_ptr<xmlDoc, XmlDeleter>;
using XmlPathResult = std::unique_ptr<xmlXPathObject, XmlDeleter>;
using XmlString = std::unique_ptr<xmlChar, XmlDeleter>;

// libxml2's texts, as it wants and gives them; a null text gives an empty one.
inline const xmlChar* ToXml(const std::string& text) { return reinterpret_cast<const xmlChar*>(text.c_str()); }
inline std::string FromXml(const xmlChar* text) { return text ? reinterpret_cast<const char*>(text) : ""; }

// Throws std::invalid_argument with a reason when the text is no well-formed document, or declares a document type.
XmlDocument ParseXml(const std::string& text);

// The document in UTF-8.
std::string XmlText(xmlDoc& document);

// The text of a node with all that it holds.
std::string ContentOf(xmlNode& node);

// Whether a text may stand in a document of ours: UTF-8 without control characters.
bool IsPlainText(const std::string& text);

// Answers paths over one document, which must outlive it. Belongs to one thread.
class XmlPaths {
public:
    // prefixes: "p=urn:x;q=urn:y" binds each prefix to a namespace; spaces around the parts and empty pieces do not
    // count. Throws std::invalid_argument with a reason when the text is not of that form.
    XmlPaths(xmlDoc& document, const std::string& prefixes);

    // Never null. Throws std::invalid_argument with a reason when the path is no XPath 1.0, uses a prefix that is
    // not bound, or costs too much.
    XmlPathResult Find(const std::string& path) const;

private:
    void Bind(const std::string& binding);

    std::unique_ptr<xmlXPathContext, XmlDeleter> m_context;
};

}  // namespace wndevice
