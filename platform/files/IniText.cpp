#include "platform/files/IniText.h"

#include "platform/text/CaseFold.h"

namespace wnplatform {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string_view Trimmed(std::string_view text) noexcept {
    constexpr std::string_view kBlanks = " \t\r\n\v\f";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string_view Unquoted(std::string_view text) noexcept {
    const bool quoted =
        text.size() >= 2 && (text.front() == '"' || text.front() == '\'') && text.back() == text.front();
    return quoted ? text.substr(1, text.size() - 2) : text;
}

struct Line {
    std::size_t begin = 0;
    std::size_t end = 0;       // after the line's end
    std::string_view section;  // the name in brackets, when the line begins a section
    bool beginsSection = false;
    std::string_view key;
    std::string_view value;
};

// The line that begins at a place of the text.
Line LineAt(std::string_view text, std::size_t begin) noexcept {
    Line line;
    line.begin = begin;
    const std::size_t feed = text.find('\n', begin);
    line.end = feed == std::string_view::npos ? text.size() : feed + 1;
    std::string_view content = text.substr(begin, line.end - begin);
    if (begin == 0 && content.starts_with(kByteOrderMark)) content.remove_prefix(kByteOrderMark.size());
    content = Trimmed(content);
    if (content.starts_with(';')) return line;
    if (content.starts_with('[')) {
        line.beginsSection = true;
        line.section = Trimmed(content.substr(1, content.find(']') - 1));
        return line;
    }
    const std::size_t equals = content.find('=');
    if (equals == std::string_view::npos) return line;
    line.key = Trimmed(content.substr(0, equals));
    line.value = Trimmed(content.substr(equals + 1));
    return line;
}

bool SameName(std::string_view a, std::string_view b) noexcept { return CompareNames(a, b) == 0; }

// Where a section and one of its keys stand.
struct Place {
    std::size_t sectionBegin;
    std::size_t contentEnd;  // after the section's last line that is not empty
    std::size_t sectionEnd;
    std::optional<Line> key;
};

std::optional<Place> Find(std::string_view text, std::string_view section, std::optional<std::string_view> key) {
    std::optional<Place> place;
    for (std::size_t at = 0; at < text.size();) {
        const Line line = LineAt(text, at);
        at = line.end;
        if (line.beginsSection) {
            if (place) break;
            if (SameName(line.section, section)) place = Place{line.begin, line.end, line.end, {}};
            continue;
        }
        if (!place) continue;
        place->sectionEnd = line.end;
        if (!Trimmed(text.substr(line.begin, line.end - line.begin)).empty()) place->contentEnd = line.end;
        if (key && !place->key && !line.key.empty() && SameName(line.key, *key)) place->key = line;
    }
    return place;
}

std::string Replaced(std::string_view text, std::size_t begin, std::size_t end, const std::string& by) {
    std::string result(text.substr(0, begin));
    result += by;
    result += text.substr(end);
    return result;
}

}  // namespace

std::optional<std::string_view> FindIniValue(std::string_view text, std::string_view section, std::string_view key) {
    const std::optional<Place> place = Find(text, Trimmed(section), Trimmed(key));
    if (!place || !place->key) return std::nullopt;
    return Unquoted(place->key->value);
}

std::string WithIniValue(std::string_view text, std::string_view section, std::optional<std::string_view> key,
                         std::optional<std::string_view> value) {
    const std::string lineEnd = text.empty() || text.find("\r\n") != std::string_view::npos ? "\r\n" : "\n";
    section = Trimmed(section);
    if (key) key = Trimmed(*key);
    const std::optional<Place> place = Find(text, section, key);
    if (!key) return place ? Replaced(text, place->sectionBegin, place->sectionEnd, "") : std::string(text);
    if (!value)
        return place && place->key ? Replaced(text, place->key->begin, place->key->end, "") : std::string(text);

    const std::string line = std::string(*key) + "=" + std::string(*value) + lineEnd;
    if (place && place->key) return Replaced(text, place->key->begin, place->key->end, line);
    const std::size_t end = place ? place->contentEnd : text.size();
    std::string added = end > 0 && text[end - 1] != '\n' ? lineEnd : "";
    if (!place) added += "[" + std::string(section) + "]" + lineEnd;
    return Replaced(text, end, end, added + line);
}

}  // namespace wnplatform
