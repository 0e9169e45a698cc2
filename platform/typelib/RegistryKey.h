// What type-library registration needs of HKEY_CLASSES_ROOT, in whole steps. Texts are in the narrow code page.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace wnplatform::typelib {

// The default value of a key; none when the key or the text is absent.
std::optional<std::string> ReadClassesText(const std::string& key);

// Makes the key where it is absent and sets its default value.
bool WriteClassesText(const std::string& key, const std::string& text);

std::vector<std::string> ClassesSubkeys(const std::string& key);

// Deletes a key with everything below it.
bool RemoveClassesTree(const std::string& key);

}  // namespace wnplatform::typelib
