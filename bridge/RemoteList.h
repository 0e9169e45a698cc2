// Lists of narrow texts, as the bridge hands them to the agent.
#pragma once

#include <windows.h>

#include <memory>

#include "wncom/RemoteArray.h"

namespace wncom {

// Frees a null-terminated array from the C runtime heap and its texts; nothing for null.
void FreePCharArray(char** list) noexcept;

struct PCharArrayDeleter {
    void operator()(char** list) const noexcept { FreePCharArray(list); }
};

// Owns such an array, or null: pointers to malloc'ed texts in the narrow code page, the last pointer null.
using PCharArray = std::unique_ptr<char*[], PCharArrayDeleter>;

// Copies a remote list, which may be null and stays the caller's, and returns the number of texts. The slot is
// written only when that is not 0; a list that cannot be copied whole counts as empty.
LONG RemoteArrayPtrToPCharArray(const RemoteArray* remote, PCharArray* slot) noexcept;

}  // namespace wncom
