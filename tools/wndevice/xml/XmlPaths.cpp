#include "tools/wndevice/xml/XmlPaths.h"

#include <libxml/xmlerror.h>
#include <libxml/xpathInternals.h>

#include <algorithm>
#include <new>
#include <stdexcept>

#include "tools/wndevice/xml/Xml.h"

namespace wndevice {
namespace {

constexpr std::size_t kMostSteps = 1'000'000;
constexpr std::size_t kMostWork = 1'000'000'000;  // bytes of text that are walked through
constexpr double kCopyWork = 16;                  // a text that was put together is also stored and sent
constexpr std::size_t kLongestPath = 4096;        // bytes

std::string Trimmed(const std::string& text) {
    const std::size_t start = text.find_first_not_of(" \t\r\n");
    if (start == std::string::npos) return {};
    return text.substr(start, text.find_last_not_of(" \t\r\n") - start + 1);
}

// Without a handler libxml2 writes to standard error.
void Ignore(void*, xmlError*) {}

// libxml2 limits the steps of a path but not the text that a step walks through. A step at the document itself walks
// through all its text at most, so the longer that is, the fewer steps there are. Functions that make longer texts,
// or go through one for each part of the other, pay for it in steps.
enum class Cost { Copies, Searches };
template <void (*function)(xmlXPathParserContext*, int), Cost cost>
void Metered(xmlXPathParserContext* parser, int count) {
    constexpr bool searches = cost == Cost::Searches;
    xmlXPathContext& context = *parser->context;
    const std::size_t stepBytes = *static_cast<const std::size_t*>(context.userData);
    double work = searches ? 1 : 0;
    for (int i = 1; i <= std::min(count, parser->valueNr); ++i) {
        const xmlXPathObject& value = *parser->valueTab[parser->valueNr - i];
        const double size = value.type == XPATH_STRING ? xmlStrlen(value.stringval) : static_cast<double>(stepBytes);
        work = searches ? work * std::max(size, 1.0) : work + kCopyWork * size;
    }
    const double steps = work / static_cast<double>(stepBytes);
    if (steps > static_cast<double>(context.opLimit - std::min(context.opCount, context.opLimit))) {
        return xmlXPathErr(parser, XPATH_OP_LIMIT_EXCEEDED);
    }
    context.opCount += static_cast<unsigned long>(steps);  // libxml2's type
    function(parser, count);
}

}  // namespace

XmlPaths::XmlPaths(xmlDoc& document, const std::string& prefixes)
    : m_context(xmlXPathNewContext(&document)), m_stepBytes(1000 + XmlText(document, XmlLayout::AsItIs).size()) {
    if (!m_context) throw std::bad_alloc();
    m_context->opLimit = std::min(kMostSteps, kMostWork / m_stepBytes);
    m_context->userData = &m_stepBytes;
    constexpr std::pair<const char*, xmlXPathFunction> functions[] = {
        {"concat", &Metered<&xmlXPathConcatFunction, Cost::Copies>},
        {"contains", &Metered<&xmlXPathContainsFunction, Cost::Searches>},
        {"substring-before", &Metered<&xmlXPathSubstringBeforeFunction, Cost::Searches>},
        {"substring-after", &Metered<&xmlXPathSubstringAfterFunction, Cost::Searches>},
        {"translate", &Metered<&xmlXPathTranslateFunction, Cost::Searches>},
    };
    for (const auto& [name, function] : functions) {
        xmlXPathRegisterFunc(m_context.get(), ToXml(name), nullptr);  // takes libxml2's own away
        if (xmlXPathRegisterFunc(m_context.get(), ToXml(name), function) != 0) throw std::bad_alloc();
    }
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
        throw std::invalid_argument("The prefix " + prefix + " is bound twice");
    }
    if (xmlXPathRegisterNs(m_context.get(), ToXml(prefix), ToXml(space)) != 0) throw std::bad_alloc();
}

XPathResult XmlPaths::Find(const std::string& path) const {
    if (path.size() > kLongestPath) {
        throw std::invalid_argument("The path is longer than " + std::to_string(kLongestPath) + " bytes");
    }
    xmlResetLastError();
    xmlSetStructuredErrorFunc(nullptr, &Ignore);  // of this thread
    XPathResult result(xmlXPathEval(ToXml(path), m_context.get()));
    if (!result) throw std::invalid_argument("The path cannot be used: " + LastXmlError());
    return result;
}

}  // namespace wndevice
