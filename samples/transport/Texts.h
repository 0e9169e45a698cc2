// Texts on their way through the library, and the few forms of XML that this device reads and writes.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

namespace sample {

// UTF-8 as UTF-16. The bridge encodes each UTF-16 unit by itself, so a character outside the basic plane arrives as
// two sequences of three bytes and comes out right as two units; what is no such sequence becomes U+FFFD.
std::basic_string<WCHAR> Widened(std::string_view text);

// The same text with a numeric character reference for each character outside ASCII. The bridge reads answers in the
// system's narrow code page; ASCII is the same in all of them.
std::string AsciiXml(std::string_view text);

// What stands between each <name> and the next </name>, as written there. The documents that this device takes are
// that flat; a library for a real one leaves this to an XML parser.
std::vector<std::string_view> Elements(std::string_view document, std::string_view name);
// The first of them, or an empty text.
std::string_view FirstElement(std::string_view document, std::string_view name);

std::string Element(std::string_view name, std::string_view content);

}  // namespace sample
