// The registry's file as this process knows it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>

#include "platform/registry/RegistryKeys.h"
#include "winerror.h"

namespace wnplatform {

// What the registry holds now. While a view lives no other thread of this process reads or changes the registry, so
// views are short, and one thread has at most one.
struct RegistryView {
    std::unique_lock<std::mutex> lock;
    LSTATUS status = ERROR_SUCCESS;  // when the file cannot be read: the other members then mean nothing
    std::shared_ptr<const RegistryTree> tree;
    std::uint64_t version = 0;  // another one whenever the registry has changed
};
RegistryView ViewRegistry();

// The lock alone, for what concerns only this process's handles.
std::unique_lock<std::mutex> LockRegistry();

// Changes the registry: the newest state is handed to the function, and what it leaves becomes the registry in one
// step, unless it answers a failure. ERROR_BADDB, with nothing changed, when the file holds what was not understood.
LSTATUS ChangeRegistry(const std::function<LSTATUS(RegistryTree&)>& change);

}  // namespace wnplatform
