#include "platform/registry/RegistryText.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

#include "platform/text/Utf8.h"
#include "winreg.h"

namespace wnplatform {
namespace {

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

class Parser {
public:
    Parser(RegistryTree& tree, std::string_view text)
        : m_tree(tree), m_rest(text), m_comments(std::exchange(tree.closingComments, {})) {}

    void ParseHeader() {
        TakePrefix(m_rest, kByteOrderMark);
        if (Trimmed(TakeLine(m_rest)) != kRegistryHeader) m_tree.damaged = true;
    }

    void ParseLines() {
        while (!m_rest.empty()) {
            const std::string_view line = Trimmed(TakeLine(m_rest));
            if (!line.empty() && !ParseLine(line)) m_tree.damaged = true;
        }
        m_tree.closingComments = std::move(m_comments);
    }

private:
    bool ParseLine(std::string_view line) {
        if (line.starts_with('[')) return ParseKey(line);
        if (!line.starts_with(';')) return ParseValue(Joined(line));
        if (!IsUtf8(line)) return false;
        m_comments.append(line).append("\n");
        return true;
    }

    bool ParseKey(std::string_view line) {
        m_key = nullptr;
        if (!line.ends_with(']') || !IsUtf8(line)) return false;
        std::string_view path = line.substr(1, line.size() - 2);
        const bool removes = TakePrefix(path, "-");
        const std::string_view root = path.substr(0, path.find('\\'));
        if (CompareNames(root.substr(0, kRootPrefix.size()), kRootPrefix) != 0) return false;
        RegistryKey* base = &m_tree.top;
        if (CompareNames(root, kClassesRoot) == 0) {
            path.remove_prefix(root.size());
            base = m_tree.classes;
        }
        if (RegistryDepth(base->Path()) + RegistryDepth(path) > kMaxRegistryDepth) return false;
        if (removes) {
            RegistryKey* const key = base->Descend(path);
            return !key || m_tree.Remove(*key);
        }
        m_key = &base->Make(path);
        m_key->comments += std::exchange(m_comments, {});
        return true;
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

    bool ParseValue(std::string_view line) {
        if (!m_key || !IsUtf8(line)) return false;
        std::string name;
        if (!TakePrefix(line, "@")) {
            auto quoted = TakeQuoted(line);
            if (!quoted) return false;
            name = std::move(*quoted);
        }
        line = Trimmed(line);
        if (!TakePrefix(line, "=")) return false;
        line = Trimmed(line);
        if (line == "-") {
            m_key->values.erase(name);
            return true;
        }
        RegistryValue parsed;
        if (!ParseData(line, parsed)) return false;
        RegistryValue& value = m_key->values[std::move(name)];
        parsed.comments = std::move(value.comments) + std::exchange(m_comments, {});
        value = std::move(parsed);
        return true;
    }

    RegistryTree& m_tree;
    std::string_view m_rest;
    RegistryKey* m_key = nullptr;
    std::string m_comments;
};

}  // namespace

void ReadRegistry(RegistryTree& tree, std::string_view text) {
    Parser parser(tree, text);
    parser.ParseHeader();
    parser.ParseLines();
}

void ReadRegistryChanges(RegistryTree& tree, std::string_view lines) { Parser(tree, lines).ParseLines(); }

}  // namespace wnplatform
