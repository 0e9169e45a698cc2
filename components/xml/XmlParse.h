// Parsing with nothing let pass: a document that is cut off or malformed is refused with the place of the fault.
#pragma once

#include <pugixml.hpp>

#include <cstddef>
#include <string>
#include <string_view>

namespace wncom::components {

// Parses a document in UTF-8 and returns its one top element; the document owns it. Texts are kept exactly, white
// space between elements included; comments, processing instructions and the document type are dropped, so an entity
// that a document type declares stays a reference as it is written. Throws Problem, the document then is empty.
pugi::xml_node ParseXml(std::string_view source, pugi::xml_document& document);

// "line 3, column 7" of the byte at an offset; both count from 1, columns in characters.
std::string PlaceIn(std::string_view source, std::ptrdiff_t offset);

}  // namespace wncom::components
