// The text of an initialisation file: sections in brackets, lines of a key and a value, comments after a semicolon.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace wnplatform {

// The value of a key in the first section of a name, without the blanks and the quotes around it. Names compare
// without regard to case. Whatever the text holds, it is read once from front to back.
std::optional<std::string_view> FindIniValue(std::string_view text, std::string_view section, std::string_view key);

// The text with a key's value set; a section or a key that is absent is added. Without a value the key is taken away,
// without a key the section. Everything else stays as it is, line ends included.
std::string WithIniValue(std::string_view text, std::string_view section, std::optional<std::string_view> key,
                         std::optional<std::string_view> value);

}  // namespace wnplatform
