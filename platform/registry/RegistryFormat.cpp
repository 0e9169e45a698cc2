#include <charconv>
#include <iterator>
#include <utility>

#include "platform/registry/RegistryText.h"
#include "winreg.h"

namespace wnplatform {
namespace {

std::string Quoted(std::string_view text) {
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') result += '\\';
        result += c;
    }
    return result + '"';
}

void AppendHex(std::string& text, std::uint32_t number, std::size_t digits) {
    char buffer[8];
    const auto end = std::to_chars(std::begin(buffer), std::end(buffer), number, 16).ptr;
    const auto length = static_cast<std::size_t>(end - buffer);
    text.append(digits > length ? digits - length : 0, '0').append(buffer, length);
}

std::uint32_t DwordOf(const std::string& data) {
    std::uint32_t number = 0;
    for (std::size_t i = data.size(); i-- > 0;) number = (number << 8) | static_cast<unsigned char>(data[i]);
    return number;
}

std::string FormatData(const RegistryValue& value) {
    if (value.isPlainText) return Quoted(value.data);
    std::string text;
    if (value.type == REG_DWORD && value.data.size() == sizeof(DWORD)) {
        text = "dword:";
        AppendHex(text, DwordOf(value.data), 8);
        return text;
    }
    text = "hex";
    if (value.type != REG_BINARY) {
        text += '(';
        AppendHex(text, value.type, 1);
        text += ')';
    }
    char separator = ':';
    if (value.data.empty()) text += separator;
    for (const char c : value.data) {
        text += std::exchange(separator, ',');
        AppendHex(text, static_cast<unsigned char>(c), 2);
    }
    return text;
}

std::string FormatName(std::string_view name) { return name.empty() ? "@" : Quoted(name); }

void FormatKey(const RegistryKey& key, const std::string& path, std::string& text) {
    text.append("\n").append(key.comments).append(KeyLine(path));
    for (const auto& [name, value] : key.values) text.append(value.comments).append(ValueLine(name, value));
    for (const auto& [name, child] : key.children) FormatKey(*child, path + '\\' + name, text);
}

}  // namespace

std::string KeyLine(std::string_view path) { return "[" + std::string(path) + "]\n"; }

std::string RemovedKeyLine(std::string_view path) { return "[-" + std::string(path) + "]\n"; }

std::string ValueLine(std::string_view name, const RegistryValue& value) {
    return FormatName(name) + "=" + FormatData(value) + "\n";
}

std::string RemovedValueLine(std::string_view name) { return FormatName(name) + "=-\n"; }

std::string FormatRegistry(const RegistryTree& tree) {
    std::string text(kRegistryHeader);
    text += '\n';
    for (const auto& [name, root] : tree.top.children) FormatKey(*root, name, text);
    return text + tree.closingComments;
}

}  // namespace wnplatform
