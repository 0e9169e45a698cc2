// Command lines: quoted as Windows' programs quote them, the arguments come back.
#include "fuzz/support/Fuzz.h"
#include "platform/processes/CommandLine.h"

using namespace wncom::fuzz;

namespace {

std::string Quoted(const std::string& argument) {
    std::string quoted = "\"";
    std::size_t backslashes = 0;
    for (const char c : argument) {
        if (c == '"') quoted.append(backslashes + 1, '\\');
        backslashes = c == '\\' ? backslashes + 1 : 0;
        quoted += c;
    }
    return quoted.append(backslashes, '\\') + '"';
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    wnplatform::SplitCommandLine(View(data, size));
    FuzzedDataProvider input(data, size);
    std::vector<std::string> arguments{"the program"};
    std::string line = "\"the program\"";
    while (input.remaining_bytes() > 0) {
        arguments.push_back(PickText(input, 12, "a\\\\\"\" \t"));
        const bool plain = !arguments.back().empty() && arguments.back().find_first_of("\" \t") == std::string::npos;
        line += (input.ConsumeBool() ? " " : " \t ") + (plain ? arguments.back() : Quoted(arguments.back()));
    }
    Expect(wnplatform::SplitCommandLine(line) == arguments, "the arguments come back");
    return 0;
}
