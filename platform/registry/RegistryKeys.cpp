#include "platform/registry/RegistryKeys.h"

#include <algorithm>
#include <utility>

namespace wnplatform {
namespace {

// Takes the first name off a path; empty at its end.
std::string_view TakeName(std::string_view& path) noexcept {
    while (path.starts_with('\\')) path.remove_prefix(1);
    const std::string_view name = path.substr(0, path.find('\\'));
    path.remove_prefix(name.size());
    return name;
}

template <class Values>
auto FindValue(Values& values, std::string_view name) noexcept {
    return std::find_if(values.begin(), values.end(),
                        [name](const RegistryValue& value) { return CompareNames(value.name, name) == 0; });
}

// Into a key without children, whose parent stays.
void Copy(const RegistryKey& from, RegistryKey& to) {
    to.name = from.name;
    to.values = from.values;
    to.comments = from.comments;
    for (const auto& [name, child] : from.children) {
        auto made = std::make_unique<RegistryKey>();
        made->parent = &to;
        Copy(*child, *made);
        to.children.emplace_hint(to.children.end(), name, std::move(made));
    }
}

}  // namespace

const RegistryValue* RegistryKey::Value(std::string_view valueName) const noexcept {
    const auto found = FindValue(values, valueName);
    return found == values.end() ? nullptr : &*found;
}

RegistryValue& RegistryKey::MakeValue(std::string_view valueName) {
    const auto found = FindValue(values, valueName);
    if (found != values.end()) return *found;
    RegistryValue value;
    value.name = valueName;
    return values.emplace_back(std::move(value));
}

bool RegistryKey::RemoveValue(std::string_view valueName) noexcept {
    const auto found = FindValue(values, valueName);
    if (found == values.end()) return false;
    values.erase(found);
    return true;
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
            auto made = std::make_unique<RegistryKey>();
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

RegistryTree::RegistryTree(const RegistryTree& other)
    : closingComments(other.closingComments), damaged(other.damaged) {
    Copy(other.top, top);
    machine = top.Descend(other.machine->Path());
    user = top.Descend(other.user->Path());
    classes = top.Descend(other.classes->Path());
}

}  // namespace wnplatform
