#include "components/xml/XmlParse.h"

#include <expat.h>

#include <algorithm>
#include <memory>
#include <new>

#include "components/xml/XmlSource.h"

namespace wncom::components {
namespace {

[[noreturn]] void Refuse(std::string_view source, std::ptrdiff_t offset, const std::string& what) {
    throw Problem(kBadDocument, PlaceIn(source, offset) + ": " + what);
}

struct FreeParser {
    void operator()(XML_ParserStruct* parser) const noexcept { XML_ParserFree(parser); }
};

// pugixml builds the tree but lets much pass: a bare "&", an attribute that stands twice, control characters. expat
// knows the rules; its time grows with the document alone, whoever wrote it.
void RequireWellFormed(std::string_view source) {
    const std::size_t start = std::min(source.find_first_not_of(kXmlSpace), source.size());
    // The name overrides what the document declares: the text has been decoded already.
    const std::unique_ptr<XML_ParserStruct, FreeParser> parser(XML_ParserCreate("UTF-8"));
    if (!parser) throw std::bad_alloc();
    XML_SetUserData(parser.get(), parser.get());
    // Nothing here could put an entity's text in its place, so its name would pass for the text.
    XML_SetEntityDeclHandler(parser.get(), [](void* self, const XML_Char*, int, const XML_Char*, int, const XML_Char*,
                                              const XML_Char*, const XML_Char*, const XML_Char*) {
        XML_StopParser(static_cast<XML_Parser>(self), XML_FALSE);
    });
    // An entity that a document type elsewhere may declare; it is not read.
    XML_SetSkippedEntityHandler(parser.get(), [](void* self, const XML_Char*, int) {
        XML_StopParser(static_cast<XML_Parser>(self), XML_FALSE);
    });
    const int size = static_cast<int>(source.size() - start);
    if (XML_Parse(parser.get(), source.data() + start, size, XML_TRUE) == XML_STATUS_OK) return;
    const XML_Error error = XML_GetErrorCode(parser.get());
    if (error == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
    const bool entity = error == XML_ERROR_ABORTED;
    Refuse(source, static_cast<std::ptrdiff_t>(start) + XML_GetCurrentByteIndex(parser.get()),
           entity ? "entities of the document's own are not supported" : XML_ErrorString(error));
}

}  // namespace

pugi::xml_node ParseXml(std::string_view source, pugi::xml_document& document) {
    document.reset();
    RequireWellFormed(source);
    constexpr unsigned kOptions = pugi::parse_default | pugi::parse_ws_pcdata;
    const pugi::xml_parse_result result =
        document.load_buffer(source.data(), source.size(), kOptions, pugi::encoding_utf8);
    if (result) return document.document_element();
    document.reset();
    if (result.status == pugi::status_out_of_memory) throw std::bad_alloc();
    Refuse(source, result.offset, result.description());
}

std::string PlaceIn(std::string_view source, std::ptrdiff_t offset) {
    const std::size_t end = offset < 0 ? 0 : std::min(static_cast<std::size_t>(offset), source.size());
    const std::string_view before = source.substr(0, end);
    const std::size_t line = before.rfind('\n');
    const std::string_view start = line == std::string_view::npos ? before : before.substr(line + 1);
    const auto firstByte = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; };
    return "line " + std::to_string(std::count(before.begin(), before.end(), '\n') + 1) + ", column " +
           std::to_string(std::count_if(start.begin(), start.end(), firstByte) + 1);
}

}  // namespace wncom::components
