#include "platform/registry/RegistryFile.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

#include "platform/text/Utf8.h"
#include "winreg.h"

namespace wnplatform {
namespace {

constexpr std::string_view kHeader = "Windows Registry Editor Version 5.00";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kRootPrefix = "HKEY_";
constexpr std::string_view kClassesRoot = "HKEY_CLASSES_ROOT";

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string_view TakeLine(std::string_view& text) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    return line;
}

bool IsUtf8(std::string_view text) {
    const char* const end = text.data() + text.size();
    for (const char* at = text.data(); at != end;) {
        const Utf8Character character = DecodeUtf8(at, end);
        if (!character.valid) return false;
        at += character.length;
    }
    return true;
}

bool TakePrefix(std::string_view& text, std::string_view prefix) {
    if (!text.starts_with(prefix)) return false;
    text.remove_prefix(prefix.size());
    return true;
}

template <class Number>
bool ParseHex(std::string_view text, Number& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, 16);
    return error == std::errc() && end == text.data() + text.size();
}

// A backslash before anything but a quote or another backslash stands for itself: paths written by hand often have
// single ones.
std::optional<std::string> TakeQuoted(std::string_view& text) {
    if (!TakePrefix(text, "\"")) return std::nullopt;
    std::string result;
    while (!text.empty()) {
        const char c = text.front();
        text.remove_prefix(1);
        if (c == '"') return result;
        const bool escapes = c == '\\' && (text.starts_with('\\') || text.starts_with('"'));
        result += escapes ? text.front() : c;
        if (escapes) text.remove_prefix(1);
    }
    return std::nullopt;
}

std::optional<std::string> ParseBytes(std::string_view text) {
    std::string bytes;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(','), text.size());
        const std::string_view item = Trimmed(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        unsigned char byte = 0;
        if (item.empty() || item.size() > 2 || !ParseHex(item, byte)) return std::nullopt;
        bytes += static_cast<char>(byte);
    }
    return bytes;
}

void SetDword(RegistryValue& value, std::uint32_t number) {
    value.type = REG_DWORD;
    for (unsigned shift = 0; shift < 32; shift += 8) value.data += static_cast<char>((number >> shift) & 0xFF);
}

// Fills in a value's type and data from what stands after its equals sign.
bool ParseData(std::string_view text, RegistryValue& value) {
    if (text.starts_with('"')) {
        auto quoted = TakeQuoted(text);
        if (!quoted || !text.empty()) return false;
        value.type = REG_SZ;
        value.data = std::move(*quoted);
        value.isPlainText = true;
        return true;
    }
    if (TakePrefix(text, "dword:")) {
        std::uint32_t number = 0;
        if (text.empty() || text.size() > 8 || !ParseHex(text, number)) return false;
        SetDword(value, number);
        return true;
    }
    if (!TakePrefix(text, "hex")) return false;
    value.type = REG_BINARY;
    if (TakePrefix(text, "(")) {
        const std::size_t end = text.find(')');
        if (end == std::string_view::npos || !ParseHex(text.substr(0, end), value.type)) return false;
        text.remove_prefix(end + 1);
    }
    if (!TakePrefix(text, ":")) return false;
    auto bytes = ParseBytes(Trimmed(text));
    if (!bytes) return false;
    value.data = std::move(*bytes);
    return true;
}

std::optional<RegistryValue> ParseValue(std::string_view line) {
    RegistryValue value;
    if (!TakePrefix(line, "@")) {
        auto name = TakeQuoted(line);
        if (!name) return std::nullopt;
        value.name = std::move(*name);
    }
    line = Trimmed(line);
    if (!TakePrefix(line, "=") || !ParseData(Trimmed(line), value)) return std::nullopt;
    return value;
}

RegistryKey* ParseKey(std::string_view line, RegistryTree& tree) {
    if (!line.ends_with(']')) return nullptr;
    std::string_view path = line.substr(1, line.size() - 2);
    const std::string_view root = path.substr(0, path.find('\\'));
    if (CompareNames(root.substr(0, kRootPrefix.size()), kRootPrefix) != 0) return nullptr;
    if (CompareNames(root, kClassesRoot) != 0) return &tree.top.Make(path);
    path.remove_prefix(root.size());
    return &tree.classes->Make(path);
}

class Parser {
public:
    explicit Parser(std::string_view text) : m_rest(text) {}

    std::unique_ptr<RegistryTree> Parse() {
        TakePrefix(m_rest, kByteOrderMark);
        if (Trimmed(TakeLine(m_rest)) != kHeader) m_tree->damaged = true;
        while (!m_rest.empty()) ParseLine(Trimmed(TakeLine(m_rest)));
        m_tree->closingComments = std::move(m_comments);
        return std::move(m_tree);
    }

private:
    void ParseLine(std::string_view line) {
        if (line.empty()) return;
        if (!IsUtf8(line)) {
            m_tree->damaged = true;
        } else if (line.starts_with(';')) {
            m_comments.append(line).append("\n");
        } else if (line.starts_with('[')) {
            m_key = ParseKey(line, *m_tree);
            if (m_key) {
                m_key->comments += std::exchange(m_comments, {});
            } else {
                m_tree->damaged = true;
            }
        } else {
            TakeValue(Joined(line));
        }
    }

    // Long lists of bytes are broken after a comma with a backslash.
    std::string Joined(std::string_view line) {
        std::string whole(line);
        while (whole.ends_with(",\\") && !m_rest.empty()) {
            whole.pop_back();
            whole += Trimmed(TakeLine(m_rest));
        }
        return whole;
    }

    void TakeValue(const std::string& line) {
        auto value = ParseValue(line);
        if (!m_key || !value) {
            m_tree->damaged = true;
            return;
        }
        value->comments = std::exchange(m_comments, {});
        m_key->MakeValue(value->name) = std::move(*value);
    }

    std::string_view m_rest;
    std::unique_ptr<RegistryTree> m_tree = std::make_unique<RegistryTree>();
    RegistryKey* m_key = nullptr;
    std::string m_comments;
};

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

void FormatKey(const RegistryKey& key, const std::string& path, std::string& text) {
    text.append("\n").append(key.comments).append("[").append(path).append("]\n");
    for (const RegistryValue& value : key.values) {
        text.append(value.comments).append(value.name.empty() ? "@" : Quoted(value.name)).append("=");
        text.append(FormatData(value)).append("\n");
    }
    for (const auto& [name, child] : key.children) FormatKey(*child, path + '\\' + name, text);
}

}  // namespace

std::unique_ptr<RegistryTree> ParseRegistry(std::string_view text) { return Parser(text).Parse(); }

std::string FormatRegistry(const RegistryTree& tree) {
    std::string text(kHeader);
    text += '\n';
    for (const auto& [name, root] : tree.top.children) FormatKey(*root, name, text);
    return text + tree.closingComments;
}

}  // namespace wnplatform
