// The registry as this process knows it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "platform/registry/RegistryKeys.h"
#include "winerror.h"

namespace wnplatform {

// What the registry holds now. While a view lives no other thread of this process reads or changes the registry, so
// views are short, and one thread has at most one.
struct RegistryView {
    std::unique_lock<std::mutex> lock;
    LSTATUS status = ERROR_SUCCESS;  // when the file cannot be read: the other members then mean nothing
    std::shared_ptr<RegistryTree> tree;
    std::uint64_t version = 0;  // another one whenever the registry has changed
};
RegistryView ViewRegistry();

// The lock alone, for what concerns only this process's handles.
std::unique_lock<std::mutex> LockRegistry();

// Changes the registry: the function is given the newest state and tells the change in lines of the registry's text,
// which begin with a key's; none mean that nothing is to change, and a failure that nothing does. A change is there
// for every process, and outlives this one, once the call has returned. ERROR_BADDB, with nothing changed, when the
// file holds what was not understood.
LSTATUS ChangeRegistry(const std::function<LSTATUS(const RegistryView&, std::string& lines)>& change);

}  // namespace wnplatform
