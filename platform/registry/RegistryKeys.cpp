#include "platform/registry/RegistryKeys.h"

namespace wnplatform {
namespace {

// Takes the first name off a path; empty at its end.
std::string_view TakeName(std::string_view& path) noexcept {
    while (path.starts_with('\\')) path.remove_prefix(1);
    const std::string_view name = path.substr(0, path.find('\\'));
    path.remove_prefix(name.size());
    return name;
}

void MarkRemoved(RegistryKey& key) noexcept {
    key.removed = true;
    key.parent = nullptr;
    for (const auto& [name, child] : key.children) MarkRemoved(*child);
}

}  // namespace

std::size_t RegistryDepth(std::string_view path) noexcept {
    std::size_t depth = 0;
    while (!TakeName(path).empty()) ++depth;
    return depth;
}

const RegistryValue* RegistryKey::Value(std::string_view valueName) const noexcept {
    const auto found = values.find(valueName);
    return found == values.end() ? nullptr : &found->second;
}

const RegistryKey* RegistryKey::Descend(std::string_view path) const noexcept {
    const RegistryKey* key = this;
    for (std::string_view next = TakeName(path); !next.empty(); next = TakeName(path)) {
        const auto child = key->children.find(next);
        if (child == key->children.end()) return nullptr;
        key = child->second.get();
    }
    return key;
}

RegistryKey* RegistryKey::Descend(std::string_view path) noexcept {
    return const_cast<RegistryKey*>(static_cast<const RegistryKey*>(this)->Descend(path));
}

RegistryKey& RegistryKey::Make(std::string_view path) {
    RegistryKey* key = this;
    for (std::string_view next = TakeName(path); !next.empty(); next = TakeName(path)) {
        auto child = key->children.find(next);
        if (child == key->children.end()) {
            auto made = std::make_shared<RegistryKey>();
            made->name = next;
            made->parent = key;
            child = key->children.emplace(std::string(next), std::move(made)).first;
        }
        key = child->second.get();
    }
    return *key;
}

std::string RegistryKey::Path() const {
    if (!parent || !parent->parent) return name;
    return parent->Path() + '\\' + name;
}

RegistryTree::RegistryTree()
    : machine(&top.Make("HKEY_LOCAL_MACHINE")),
      user(&top.Make("HKEY_CURRENT_USER")),
      classes(&machine->Make("SOFTWARE\\Classes")) {}

bool RegistryTree::MayRemove(const RegistryKey& key) const noexcept {
    for (const RegistryKey* fixed = classes; fixed; fixed = fixed->parent) {
        if (fixed == &key) return false;
    }
    return key.parent != &top;
}

bool RegistryTree::Remove(RegistryKey& key) {
    if (!MayRemove(key)) return false;
    auto& siblings = key.parent->children;
    const auto found = siblings.find(key.name);
    MarkRemoved(key);
    siblings.erase(found);
    return true;
}

}  // namespace wnplatform
