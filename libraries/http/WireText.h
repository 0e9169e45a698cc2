// Texts between the bridge, which reads answers in the system's narrow code page, and a device, which speaks UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace wncom::http {

// What the bridge handed over, as proper UTF-8: it encodes the two halves of a character outside the basic plane one
// by one, and here they are joined. Throws std::invalid_argument for half a character.
std::string ToWire(std::string_view text);

// A text in the thread's narrow code page, which is how some arrive, as UTF-8.
std::string NarrowToWire(std::string_view text);

// One XML element with a text, which is escaped.
std::string XmlElement(const char* name, std::string_view text);

// An XML answer for the bridge. A character that the narrow code page lacks becomes a numeric character reference,
// which means the same in element and attribute values. Throws std::runtime_error when the answer is not UTF-8.
std::string XmlFromWire(std::string answer);

}  // namespace wncom::http
