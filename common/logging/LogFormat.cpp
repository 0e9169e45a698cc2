#include "common/logging/LogFormat.h"

#include "common/logging/LogConversion.h"

namespace wncom {
namespace {

// Pairs of a percent sign and the character behind it, whatever that is: "%%s" is a percent sign and a letter.
std::size_t CountStringConversions(std::string_view format) noexcept {
    std::size_t count = 0;
    for (std::size_t at = format.find('%'); at < kFormatLimit && at + 1 < format.size();
         at = format.find('%', at + 2)) {
        if (format[at + 1] == 's' || format[at + 1] == 'S') ++count;
    }
    return count;
}

}  // namespace

void AppendMessage(LogLine& line, const char* format, const LogArgument* arguments, std::size_t count) noexcept {
    std::string_view rest(format ? format : "(null)");
    const std::size_t texts = CountStringConversions(rest);
    if (rest.size() >= kFormatLimit) {
        line.Append("WARNING!!! LogMessage() format string > 512 chars:");
        rest = rest.substr(0, kFormatLimit - 1);
    }
    const std::size_t textBytes = texts == 0 ? 0 : (2 * (kFormatLimit - texts) - rest.size()) / texts;

    std::size_t next = 0;
    while (!line.full()) {
        const std::size_t percent = rest.find('%');
        line.Append(rest.substr(0, percent));
        if (percent == std::string_view::npos) return;
        rest.remove_prefix(percent);

        LogConversion conversion;
        const std::size_t length = conversion.Parse(rest);
        if (length == 0) {
            line.Append("%");
            rest.remove_prefix(1);
            continue;
        }
        rest.remove_prefix(length);
        if (conversion.type == '%') {
            line.Append("%");
        } else if (next == count) {
            line.Append("(missing)");
        } else {
            if (length == 2 && conversion.ForText()) conversion.precision = textBytes;
            conversion.Append(line, arguments[next++]);
        }
    }
}

}  // namespace wncom
