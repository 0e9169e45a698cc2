#include "components/xml/XmlAccessor.h"

#include <optional>
#include <utility>

#include "common/Guard.h"
#include "components/xml/XmlParse.h"
#include "components/xml/XmlSource.h"

namespace wncom::components {
namespace {

// What callers say of the element that they ask for; the answer is the same.
constexpr LONG kAnyNumber = 0;
constexpr LONG kSingle = 4;

WideView View(BSTR text) { return text ? WideView(text, SysStringLen(text)) : WideView(); }

// All text below the element, in document order. Without recursion: nothing bounds the depth of a document.
void AppendText(pugi::xml_node top, std::string& text) {
    pugi::xml_node node = top.first_child();
    while (node) {
        text += node.value();
        if (node.first_child()) {
            node = node.first_child();
            continue;
        }
        while (node != top && !node.next_sibling()) node = node.parent();
        if (node == top) return;
        node = node.next_sibling();
    }
}

// Null when there is no match; texts joined by the delimiter otherwise.
template <class Nodes, class Append>
std::optional<std::string> Join(const Nodes& nodes, const std::string& delimiter, Append append) {
    std::optional<std::string> joined;
    for (const auto& node : nodes) {
        if (joined) *joined += delimiter;
        if (!joined) joined.emplace();
        append(node, *joined);
    }
    return joined;
}

// The answer of the general engine. Throws pugi::xpath_exception for a query that it does not understand.
std::optional<std::string> Evaluate(const std::string& text, pugi::xml_node top, const std::string& delimiter) {
    const pugi::xpath_query query(text.c_str());
    if (query.return_type() != pugi::xpath_type_node_set) return query.evaluate_string(top);
    pugi::xpath_node_set nodes = query.evaluate_node_set(top);
    nodes.sort();
    return Join(nodes, delimiter, [](const pugi::xpath_node& match, std::string& joined) {
        if (match.attribute()) {
            joined += match.attribute().value();
        } else if (match.node().first_child()) {
            AppendText(match.node(), joined);
        } else {
            joined += match.node().value();
        }
    });
}

}  // namespace

HRESULT XmlAccessor::SetDelimiter(BSTR delimiter) {
    return Guarded([&]() -> HRESULT {
        std::optional<std::string> text = NarrowExactly(CP_UTF8, View(delimiter));
        if (!text) return E_INVALIDARG;
        m_delimiter = *std::move(text);
        return S_OK;
    });
}

HRESULT XmlAccessor::LoadXML(BSTR document) {
    return Guarded([&]() -> HRESULT {
        m_walker.Forget();
        m_top = {};
        m_document.reset();
        return Load(View(document));
    });
}

HRESULT XmlAccessor::Load(WideView document) {
    if (document.empty()) return E_INVALIDARG;
    const bool isXml = LooksLikeXml(document);
    try {
        if (isXml) {
            m_top = ParseXml(DecodeXmlText(document), m_document);
        } else {
            if (document.find(OLECHAR()) != WideView::npos) return HRESULT_FROM_WIN32(ERROR_INVALID_NAME);
            const WideText path(document);
            const OwnedHandle file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                               nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
            m_top = ParseXml(DecodeXmlFile(ReadFileBytes(file)), m_document);
        }
    } catch (const Problem& problem) {
        const std::string name = isXml ? "a text" : NarrowExactly(CP_UTF8, document).value_or("a file");
        OutputDebugStringA(("XMLSimpleAccessor: " + name + ": " + problem.what() + "\n").c_str());
        return problem.status();
    }
    return S_OK;
}

HRESULT XmlAccessor::GetXML(BSTR query, LONG flag, BSTR* text) {
    if (!text) return E_POINTER;
    *text = nullptr;
    if (flag != kAnyNumber && flag != kSingle) return E_INVALIDARG;
    if (!m_top) return E_UNEXPECTED;
    return Guarded([&]() -> HRESULT {
        const std::optional<std::string> narrow = NarrowExactly(CP_UTF8, View(query));
        if (!narrow || narrow->empty() || narrow->find('\0') != std::string::npos) return E_INVALIDARG;
        return Query(*narrow, text);
    });
}

HRESULT XmlAccessor::Query(const std::string& query, BSTR* text) {
    std::optional<std::string> answer;
    if (const auto nodes = m_walker.Find(m_top, query)) {
        answer = Join(*nodes, m_delimiter, AppendText);
    } else {
        try {
            answer = Evaluate(query, m_top, m_delimiter);
        } catch (const pugi::xpath_exception&) {
            return E_INVALIDARG;
        }
    }
    if (!answer) return S_FALSE;
    // The engine's text functions count bytes, so a query can cut a character in two.
    const std::optional<WideText> wide = WidenExactly(CP_UTF8, *answer);
    if (!wide) return E_INVALIDARG;
    *text = Bstr(*wide).detach();
    return *text ? S_OK : E_OUTOFMEMORY;
}

}  // namespace wncom::components
