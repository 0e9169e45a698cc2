#include "platform/files/Wildcards.h"

#include "platform/text/CaseFold.h"
#include "platform/text/Utf8.h"

namespace wnplatform {
namespace {

std::string_view FirstCharacter(std::string_view text) noexcept {
    return text.substr(0, DecodeUtf8(text.data(), text.data() + text.size()).length);
}

}  // namespace

bool MatchesPattern(std::string_view name, std::string_view pattern) noexcept {
    if (pattern == "*.*") return true;
    // Where the latest * stands and what it has to swallow: only the latest one ever needs to take more, so the time
    // stays within the product of both lengths.
    std::string_view afterStar;
    std::string_view swallowing;
    bool star = false;
    while (!name.empty()) {
        if (!pattern.empty() && pattern.front() == '*') {
            pattern.remove_prefix(1);
            afterStar = pattern;
            swallowing = name;
            star = true;
            continue;
        }
        const std::string_view character = FirstCharacter(name);
        if (!pattern.empty()) {
            const std::string_view wanted = FirstCharacter(pattern);
            if (wanted == "?" || CompareNames(wanted, character) == 0) {
                pattern.remove_prefix(wanted.size());
                name.remove_prefix(character.size());
                continue;
            }
        }
        if (!star) return false;
        swallowing.remove_prefix(FirstCharacter(swallowing).size());
        name = swallowing;
        pattern = afterStar;
    }
    return pattern.find_first_not_of('*') == std::string_view::npos;
}

}  // namespace wnplatform
