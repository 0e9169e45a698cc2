#include "agent/SubmitResponse.h"

#include <wchar.h>

#include <algorithm>
#include <cstdint>
#include <new>
#include <string_view>

#include "wncom/Logging.h"
#include "wncom/TraceScope.h"

namespace wncom {
namespace {

constexpr std::size_t kNone = WideView::npos;

constexpr WCHAR kWhiteSpace[] = OLESTR(" \t\r\n");
constexpr WCHAR kQuotes[] = OLESTR("\"'");

// Only the first character must match in case.
bool MatchesAt(WideView text, std::size_t at, WideView word) {
    return text[at] == word[0] && _wcsnicmp(text.data() + at, word.data(), word.size()) == 0;
}

constexpr std::size_t kBlock = 128;

// Whether the word may begin in a block, judged by its first and its last character. The places are looked at without
// an early end, so that compilers compare several in one instruction; the text reaches as far beyond the block as the
// word does.
bool MayBeginIn(const WCHAR* block, WideView word) {
    constexpr std::uint16_t kCaseBit = 0x20;
    const WCHAR* const ends = block + word.size() - 1;
    const auto first = static_cast<std::uint16_t>(word.front());
    const auto last = static_cast<std::uint16_t>(word.back() | kCaseBit);
    std::uint16_t any = 0;
    for (std::size_t i = 0; i != kBlock; ++i) {
        const auto differs = static_cast<std::uint16_t>((block[i] ^ first) | ((ends[i] | kCaseBit) ^ last));
        any = static_cast<std::uint16_t>(any | (differs == 0 ? 0xFFFF : 0));
    }
    return any != 0;
}

std::size_t FindWord(WideView text, WideView word) {
    if (text.size() < word.size()) return kNone;
    const std::size_t places = text.size() - word.size() + 1;
    for (std::size_t at = 0; at != places;) {
        const std::size_t end = at + std::min(kBlock, places - at);
        if (end - at == kBlock && !MayBeginIn(text.data() + at, word)) at = end;
        for (; at != end; ++at) {
            if (MatchesAt(text, at, word)) return at;
        }
    }
    return kNone;
}

// The attribute's place before the end of the tag that begins or goes on at the cursor.
std::size_t FindAttribute(WideView text, std::size_t cursor, WideView attribute) {
    for (std::size_t at = cursor; at + attribute.size() <= text.size(); ++at) {
        if (text[at] == OLESTR('>')) return kNone;
        if (MatchesAt(text, at, attribute)) return at;
    }
    return kNone;
}

std::size_t SkipWhiteSpace(WideView text, std::size_t at) {
    at = text.find_first_not_of(kWhiteSpace, at);
    return at == kNone ? text.size() : at;
}

// The quoted value after an attribute. Not complete when a quote is missing; its start then tells where the search
// for an element's value goes on.
struct QuotedValue {
    std::size_t start;
    std::size_t count = 0;
    bool complete = false;
};

QuotedValue FindQuotedValue(WideView text, std::size_t attribute) {
    const std::size_t quote = text.find_first_of(kQuotes, attribute + 1);
    Log(3, "  ParseSubmitResponse %s beginning quote (%C)\n", quote != kNone ? "found" : "missed",
        quote != kNone ? text[quote] : WCHAR());
    if (quote == kNone) return {text.size()};
    const std::size_t start = SkipWhiteSpace(text, quote + 1);
    const std::size_t end = text.find(text[quote], start);
    if (end == kNone) return {start};
    return {start, end - start, true};
}

// The text between the next ">" and the "<" after it, without leading white space; empty when either is missing.
WideView FindElementValue(WideView text, std::size_t from) {
    Log(3, "  looking for value\n");
    const std::size_t tagEnd = from == kNone ? kNone : text.find(OLESTR('>'), from);
    Log(3, "  ParseSubmitResponse %s '>'\n", tagEnd != kNone ? "found" : "missed");
    if (tagEnd == kNone) return {};
    const std::size_t start = SkipWhiteSpace(text, tagEnd + 1);
    const std::size_t end = text.find(OLESTR('<'), start);
    return end == kNone ? WideView() : text.substr(start, end - start);
}

WideView FindValue(WideView text, WideView keyword, WideView attribute) {
    std::size_t cursor = 0;
    std::size_t valueStart = kNone;
    if (const std::size_t at = FindWord(text, keyword); at != kNone) {
        Log(3, "  ParseSubmitResponse found '%S' @ %u\n", keyword.data(), at);
        cursor = valueStart = at + keyword.size();
    } else {
        Log(3, "  ParseSubmitResponse could not find keyword, looking for any URI\n");
    }
    if (!attribute.empty()) {
        const std::size_t at = FindAttribute(text, cursor, attribute);
        if (at == kNone) {
            Log(3, "  ParseSubmitResponse missed URI attribute,");
        } else {
            Log(3, "  ParseSubmitResponse found URI attribute\n");
            const QuotedValue value = FindQuotedValue(text, at);
            if (value.complete) return text.substr(value.start, value.count);
            valueStart = value.start;
        }
    }
    return FindElementValue(text, valueStart);
}

}  // namespace

Bstr ParseSubmitResponse(WideView response, const WCHAR* keyword, const WCHAR* attribute) {
    if (!response.data()) {
        Log(3, "CWendrel::ParseSubmitResponse Parameter \"Resp\" is NULL!");
        return Bstr();
    }
    if (!attribute) attribute = OLESTR("");
    Log(3, "  ParseSubmitResponse looking... '%S' (%S)", keyword, attribute);
    const WideView value = FindValue(response, keyword, attribute);
    if (value.empty()) {
        Log(1, "  ParseSubmitResponse did not find URI\n");
        return Bstr();
    }
    Bstr address(value);
    if (!address) throw std::bad_alloc();
    Log(3, "  ParseSubmitResponse found complete URI='%S'\n", address.get());
    return address;
}

DataAddress ParseSubmitResponse4URI(WideView response) {
    const TraceScope trace("CWendrel::ParseSubmitResponse4URI", "Wendrel");
    DataAddress found;
    found.address = ParseSubmitResponse(response, OLESTR("PostURI"), nullptr);
    if (!found.address) found.address = ParseSubmitResponse(response, OLESTR("PostURI"), OLESTR("URI"));
    if (found.address) {
        found.addressType = 0;
        found.deliveryMethod = 1;
    } else {
        found.address = ParseSubmitResponse(response, OLESTR("sinkURI"), nullptr);
        if (!found.address) found.address = ParseSubmitResponse(response, OLESTR("sinkURI"), OLESTR("="));
        if (found.address) {
            found.addressType = 0;
            found.deliveryMethod = 3;
        }
    }
    Log(3, "Set Type='%d'\n", found.addressType);
    Log(3, "Set Meth='%d'\n", found.deliveryMethod);
    return found;
}

Bstr ParseSubmitResponse4JobURI(WideView response) {
    const TraceScope trace("CWendrel::ParseSubmitResponse4JobURI", "Wendrel");
    return ParseSubmitResponse(response, OLESTR("JobUri"), nullptr);
}

}  // namespace wncom
