// XPath over the device data, within bounds.
#pragma once

#include <libxml/xpath.h>

#include <memory>
#include <string>

namespace wndevice {

struct XPathDeleter {
    void operator()(xmlXPathContext* context) const noexcept { xmlXPathFreeContext(context); }
    void operator()(xmlXPathObject* object) const noexcept { xmlXPathFreeObject(object); }
};
using XPathResult = std::unique_ptr<xmlXPathObject, XPathDeleter>;

// Answers the paths of one request over one document, which must outlive it. All of them together may cost about a
// second. Belongs to one thread.
class XmlPaths {
public:
    // prefixes: "p=urn:x;q=urn:y" binds each prefix to a namespace; spaces around the parts and empty pieces do not
    // count. Throws std::invalid_argument with a reason when the text is not of that form.
    XmlPaths(xmlDoc& document, const std::string& prefixes);

    // Never null. Throws std::invalid_argument with a reason when the path is not XPath 1.0, uses a prefix that is
    // not bound, or costs too much.
    XPathResult Find(const std::string& path) const;

private:
    void Bind(const std::string& binding);

    std::unique_ptr<xmlXPathContext, XPathDeleter> m_context;
    std::size_t m_stepBytes;  // of text that one step may walk through
};

}  // namespace wndevice
