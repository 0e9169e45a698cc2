// Texts between COM (UTF-16), the terminal (UTF-8) and the system's narrow calls (its code page).
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>

#include "wncom/Bstr.h"

namespace wn {

// An unpaired surrogate becomes U+FFFD.
std::string ToUtf8(std::basic_string_view<OLECHAR> text);
// Throws WrongInput naming what the text is when it is not UTF-8, CommandError when memory runs out.
wncom::Bstr FromUtf8(std::string_view text, const std::string& what);
bool IsUtf8(std::string_view text);

// UTF-8 in the narrow code page; nothing when a character has no place in it, or the text is not UTF-8.
std::optional<std::string> ToNarrow(std::string_view text);
std::string FromNarrow(std::string_view text);

bool IsControl(char c);
// The text on one line of a terminal: each control character becomes a question mark.
std::string Printable(std::string text);

// A text of several lines as one: each run of white space is a blank, and what is too long for a line is cut.
std::string OneLine(const std::string& text);

}  // namespace wn
