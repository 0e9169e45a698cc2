// The registry's keys and values in memory. Names and texts are UTF-8 here.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "platform/text/CaseFold.h"
#include "windef.h"

namespace wnplatform {

// How many names a path from the top may have: what walks the tree calls itself for each.
inline constexpr std::size_t kMaxRegistryDepth = 512;
std::size_t RegistryDepth(std::string_view path) noexcept;

struct RegistryValue {
    DWORD type = 0;
    // The caller's bytes; of a plain text, the text in UTF-8 without its terminator.
    std::string data;
    bool isPlainText = false;
    std::string comments;  // the comment lines before it in the file

    bool HasDataOf(const RegistryValue& other) const noexcept {
        return type == other.type && isPlainText == other.isPlainText && data == other.data;
    }
};

struct RegistryKey : std::enable_shared_from_this<RegistryKey> {
    std::string name;
    RegistryKey* parent = nullptr;
    bool removed = false;  // only handles still hold it
    std::map<std::string, std::shared_ptr<RegistryKey>, NameLess> children;
    std::map<std::string, RegistryValue, NameLess> values;  // the default value has an empty name
    std::string comments;

    // The value of that name; null when there is none.
    const RegistryValue* Value(std::string_view valueName) const noexcept;

    // The key that a path of names leads to; null when there is none. Empty names on the path count for nothing.
    const RegistryKey* Descend(std::string_view path) const noexcept;
    RegistryKey* Descend(std::string_view path) noexcept;
    // The same, making what is absent.
    RegistryKey& Make(std::string_view path);

    // The names from the top of the tree to here, separated by backslashes.
    std::string Path() const;
};

struct RegistryTree {
    RegistryTree();
    RegistryTree(const RegistryTree&) = delete;
    RegistryTree& operator=(const RegistryTree&) = delete;

    // Takes a key and what is below it out of the tree. False, with nothing done, for a root and for a key that holds
    // one: those are always there.
    bool Remove(RegistryKey& key);
    bool MayRemove(const RegistryKey& key) const noexcept;

    RegistryKey top;  // its children are the roots
    RegistryKey* machine;
    RegistryKey* user;
    RegistryKey* classes;
    std::string closingComments;
    bool damaged = false;  // something in the file was not understood and is missing here
};

}  // namespace wnplatform
