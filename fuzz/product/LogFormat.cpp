// Log formats: a line keeps to its bounds, and a conversion that the C library defines reads as there.
#include "common/logging/LogFormat.h"

#include <cstdio>

#include "fuzz/support/Fuzz.h"

using namespace wncom;
using namespace wncom::fuzz;

namespace {

std::string Message(const std::string& format, std::initializer_list<LogArgument> arguments) {
    LogLine line;
    AppendMessage(line, format.c_str(), arguments.begin(), arguments.size());
    Expect(line.length() <= LogLine::kTextBytes, "there is room for the line's end");
    const std::string text(line.view());
    const std::string ended = line.End();
    Expect(ended.size() < LogLine::kBufferBytes && ended.substr(0, text.size()) == text, "the end is added");
    return text;
}

// A conversion with what the C library defines for its letter.
std::string PickConversion(FuzzedDataProvider& input, char letter) {
    const std::string_view flags = letter == 'd'                    ? "-0+ "
                                   : letter == 'u'                  ? "-0"
                                   : letter == 's' || letter == 'c' ? "-"
                                                                    : "-0#";
    std::string conversion = "%" + PickText(input, 3, flags);
    if (input.ConsumeBool()) conversion += std::to_string(input.ConsumeIntegralInRange(1, 99));
    if (letter != 'c' && input.ConsumeBool()) {
        conversion += "." + std::to_string(input.ConsumeIntegralInRange(0, 99));
    }
    return conversion + letter;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    const char letter = input.PickValueInArray({'d', 'u', 'x', 'X', 'o', 'c', 's'});
    const std::string conversion = PickConversion(input, letter);
    const auto number = input.ConsumeIntegral<std::int32_t>();
    const std::string text = PickText(input, 40, "text %\xE4");
    char expected[512];
    if (letter == 's') {
        std::snprintf(expected, sizeof(expected), conversion.c_str(), text.c_str());
        Expect(Message(conversion, {text.c_str()}) == expected, conversion.c_str());
    } else if (letter == 'c') {
        std::snprintf(expected, sizeof(expected), conversion.c_str(), 'a' + number % 20);
        Expect(Message(conversion, {'a' + number % 20}) == expected, conversion.c_str());
    } else {
        std::snprintf(expected, sizeof(expected), conversion.c_str(), number);
        const LogArgument argument =
            letter == 'd' ? LogArgument(number) : LogArgument(static_cast<std::uint32_t>(number));
        Expect(Message(conversion, {argument}) == expected, conversion.c_str());
    }
    const Wide wide = PickWide(input, 64, true);
    const std::string format = input.ConsumeRandomLengthString(700);
    Message(format.c_str(), {text.c_str(), wide.c_str(), number, WCHAR{0x20AC}, static_cast<const void*>(&input)});
    return 0;
}
