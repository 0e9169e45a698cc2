// Strict parsing: a document that is cut off or malformed is refused with the place of the fault.
#pragma once

#include <pugixml.hpp>

#include <cstddef>
#include <string>
#include <string_view>

namespace wncom::components {

// Parses a document in UTF-8 and returns its top element; the document owns it. It must be well-formed, but may begin
// with white space, and may declare no entities of its own. Texts are kept exactly, white space between elements
// included; comments, processing instructions and the document type are dropped. Nothing outside the text is ever
// read. Throws Problem, the document then is empty.
pugi::xml_node ParseXml(std::string_view source, pugi::xml_document& document);

// "line 3, column 7" of the byte at an offset; both count from 1, columns in characters.
std::string PlaceIn(std::string_view source, std::ptrdiff_t offset);

}  // namespace wncom::components
