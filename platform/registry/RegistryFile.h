// The registry's form in its file: the familiar one of registration scripts, in UTF-8.
//
// Texts stand in quotes with backslashes and quotes escaped; other data stands as "dword:" or "hex(N):" with the
// bytes as the program gave them. Lines that start with a semicolon are comments and stay with what follows them.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/registry/RegistryKeys.h"

namespace wnplatform {

// Never fails: a line that is not understood is left out and marks the tree as damaged.
std::unique_ptr<RegistryTree> ParseRegistry(std::string_view text);

std::string FormatRegistry(const RegistryTree& tree);

}  // namespace wnplatform
