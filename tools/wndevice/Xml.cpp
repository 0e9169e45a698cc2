#include "tools/wndevice/Xml.h"

#include <libxml/parser.h>
#include <libxml/xmlerror.h>
#include <libxml/xpathInternals.h>

#include <algorithm>
#include <new>
#include <stdexcept>

namespace wndevice {
namespace {

constexpr unsigned long kSteps = 1'000'000;  // of one path; libxml2's type
constexpr std::size_t kLongestPath = 4096;   // bytes
constexpr std::size_t kLongestDocument = std::size_t{64} << 20;

std::string Trimmed(const std::string& text) {
    const std::size_t start = text.find_first_not_of(" \t\r\n");
    if (start == std::string::npos) return {};
    return text.substr(start, text.find_last_not_of(" \t\r\n") - start + 1);
}

std::string LastReason() {
    const xmlError* const error = xmlGetLastError();
    std::string reason = error && error->message ? error->message : "unknown fault";
    reason.erase(reason.find_last_not_of(" \n") + 1);
    return reason;
}

// Without a handler libxml2 writes to standard error.
void Ignore(void*, xmlError*) {}

}  // namespace

XmlDocument ParseXml(const std::string& text) {
    if (text.size() > kLongestDocument) throw std::invalid_argument("The document is too long");
    constexpr int options = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;
    XmlDocument document(xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr, options));
    if (!document) throw std::invalid_argument("The document is not well-formed: " + LastReason());
    if (document->intSubset) throw std::invalid_argument("A document type declaration is not taken");
    return document;
}

std::string XmlText(xmlDoc& document) {
    xmlChar* bytes = nullptr;
    int count = 0;
    xmlDocDumpMemoryEnc(&document, &bytes, &count, "UTF-8");
    const XmlString owner(bytes);
    if (!bytes) throw std::bad_alloc();
    return {reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(count)};
}

std::string ContentOf(xmlNode& node) { return FromXml(XmlString(xmlNodeGetContent(&node)).get()); }

bool IsPlainText(const std::string& text) {
    return xmlCheckUTF8(ToXml(text)) != 0 && std::none_of(text.begin(), text.end(), [](char c) {
               const auto byte = static_cast<unsigned char>(c);
               return byte < 0x20 || byte == 0x7F;
           });
}

XmlPaths::XmlPaths(xmlDoc& document, const std::string& prefixes) : m_context(xmlXPathNewContext(&document)) {
    if (!m_context) throw std::bad_alloc();
    m_context->opLimit = kSteps;
    for (std::size_t start = 0; start < prefixes.size();) {
        const std::size_t end = std::min(prefixes.find(';', start), prefixes.size());
        const std::string binding = Trimmed(prefixes.substr(start, end - start));
        if (!binding.empty()) Bind(binding);
        start = end + 1;
    }
}

void XmlPaths::Bind(const std::string& binding) {
    const std::size_t equals = std::min(binding.find('='), binding.size());
    const std::string prefix = Trimmed(binding.substr(0, equals));
    const std::string space = equals == binding.size() ? "" : Trimmed(binding.substr(equals + 1));
    if (xmlValidateNCName(ToXml(prefix), 0) != 0 || space.empty()) {
        throw std::invalid_argument("The prefixes are not of the form p=urn:x;q=urn:y");
    }
    if (xmlXPathNsLookup(m_context.get(), ToXml(prefix))) {
        throw std::invalid_argument("The prefix " + prefix + " is bound already");
    }
    if (xmlXPathRegisterNs(m_context.get(), ToXml(prefix), ToXml(space)) != 0) throw std::bad_alloc();
}

XmlPathResult XmlPaths::Find(const std::string& path) const {
    if (path.size() > kLongestPath) {
        throw std::invalid_argument("The path is longer than " + std::to_string(kLongestPath) + " bytes");
    }
    m_context->opCount = 0;
    xmlResetLastError();
    xmlSetStructuredErrorFunc(nullptr, &Ignore);  // of this thread
    XmlPathResult result(xmlXPathEval(ToXml(path), m_context.get()));
    if (!result) throw std::invalid_argument("The path is not usable: " + LastReason());
    return result;
}

}  // namespace wndevice
