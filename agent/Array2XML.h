// Lists of narrow texts as small XML documents.
#pragma once

#include "common/MallocText.h"

namespace wncom {

// A document with the root's name around one line per item, in list order. The list is null-terminated, or null for
// no items. Items are copied as they are: nothing is escaped. Null when memory runs out, which is logged.
MallocText<char> Array2XML(const char* const* list, const char* root, const char* element) noexcept;

}  // namespace wncom
