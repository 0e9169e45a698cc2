// The registry's keys and values in memory. Names and texts are UTF-8 here.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/text/CaseFold.h"
#include "windef.h"

namespace wnplatform {

struct RegistryValue {
    std::string name;  // empty for the key's default value
    DWORD type = 0;
    // The caller's bytes; of a plain text, the text in UTF-8 without its terminator.
    std::string data;
    bool isPlainText = false;
    std::string comments;  // the comment lines before it in the file
};

struct RegistryKey {
    std::string name;
    RegistryKey* parent = nullptr;
    std::map<std::string, std::unique_ptr<RegistryKey>, NameLess> children;
    std::vector<RegistryValue> values;
    std::string comments;

    const RegistryValue* Value(std::string_view valueName) const noexcept;
    // The value of that name, made when absent.
    RegistryValue& MakeValue(std::string_view valueName);
    bool RemoveValue(std::string_view valueName) noexcept;

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
    RegistryTree(const RegistryTree& other);
    RegistryTree& operator=(const RegistryTree&) = delete;

    RegistryKey top;  // its children are the roots
    RegistryKey* machine;
    RegistryKey* user;
    RegistryKey* classes;
    std::string closingComments;
    bool damaged = false;  // something in the file was not understood and is missing here
};

}  // namespace wnplatform
