// Open registry keys.
#pragma once

#include "platform/registry/RegistryStore.h"
#include "winreg.h"

namespace wnplatform {

// A handle as a view shows it. The key lives as long as the view.
struct OpenedKey {
    LSTATUS status = ERROR_SUCCESS;  // ERROR_INVALID_HANDLE, ERROR_KEY_DELETED: the other members then mean nothing
    const RegistryKey* key = nullptr;
    REGSAM access = 0;

    // ERROR_ACCESS_DENIED when the handle was opened without a right.
    LSTATUS Require(REGSAM right) const noexcept {
        if (status != ERROR_SUCCESS) return status;
        return (access & right) == right ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
    }
};
OpenedKey ResolveKey(const RegistryView& view, HKEY handle);

// A new handle for a key of the view; throws std::bad_alloc, also when there are too many.
HKEY AddKeyHandle(const RegistryView& view, const RegistryKey& key, REGSAM access);
bool RemoveKeyHandle(const std::unique_lock<std::mutex>& lock, HKEY handle);

bool IsRootKey(HKEY handle) noexcept;

}  // namespace wnplatform
