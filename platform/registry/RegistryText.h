// The registry as text: the familiar form of registration scripts, in UTF-8.
//
// Texts stand in quotes with backslashes and quotes escaped; other data stands as "dword:" or "hex(N):" with the
// bytes as the program gave them. "name"=- takes a value away and [-key] a key. What stands later in the text counts,
// so a change is told by a few more lines at its end. Lines that start with a semicolon are comments and stay with
// what follows them.
#pragma once

#include <string>
#include <string_view>

#include "platform/registry/RegistryKeys.h"

namespace wnplatform {

inline constexpr std::string_view kRegistryHeader = "Windows Registry Editor Version 5.00";

// Carries out a whole text from its header on. Never fails: a line that is not understood is left out and marks the
// tree as damaged.
void ReadRegistry(RegistryTree& tree, std::string_view text);
// Carries out lines that follow on what the tree has been read from; the first of them names a key.
void ReadRegistryChanges(RegistryTree& tree, std::string_view lines);

// The whole text for a tree.
std::string FormatRegistry(const RegistryTree& tree);

// The lines of a change: a key that is there or removed, and below it a value with its new data.
std::string KeyLine(std::string_view path);
std::string RemovedKeyLine(std::string_view path);
std::string ValueLine(std::string_view name, const RegistryValue& value);
std::string RemovedValueLine(std::string_view name);

}  // namespace wnplatform
