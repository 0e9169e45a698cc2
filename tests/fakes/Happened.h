// What the fakes were asked and what was logged, as text for a golden file.
#pragma once

#include <cstdio>
#include <initializer_list>
#include <string>
#include <string_view>

#include "tests/fakes/FakeScript.h"
#include "tests/support/Golden.h"

namespace wncom::test {

inline bool HoldsOneOf(std::string_view line, std::initializer_list<const char*> marks) {
    for (const char* mark : marks) {
        if (line.find(mark) != std::string_view::npos) return true;
    }
    return false;
}

// Part of looking for a transport library, which tests of its own show.
inline bool BelongsToSelection(std::string_view line) {
    return HoldsOneOf(line,
                      {"::JobControlFactory::", "::Entering JobControlFactory", "::Exiting JobControlFactory",
                       "::ENTER JobControlFactory", "::EXIT: JobControlFactory", "GetPath", "> PortMap.", "> Device",
                       "> Service.", "> ServiceList.", "> ServiceContent.", "> XMLSimpleAccessor."});
}

// Part of creating a component.
inline bool BelongsToCreation(std::string_view line) { return HoldsOneOf(line, {"::CI ", "PlatformServices::"}); }

// The script's calls and then the lines of a log, without those that the filter takes for noise.
template <class Noise>
std::string Happened(const std::string& log, Noise noise) {
    std::string calls;
    for (const std::string& call : Script().Calls()) {
        calls += "> ";
        for (const char byte : call) {
            char code[8];
            std::snprintf(code, sizeof(code), "\\x%02X", static_cast<unsigned char>(byte));
            calls += static_cast<unsigned char>(byte) < 0x80 ? std::string(1, byte) : code;
        }
        calls += "\n";
    }
    std::string text;
    for (const std::string& part : {calls, log}) {
        for (const std::string& line : MaskedLines(part)) {
            if (!noise(std::string_view(line))) text += line + "\n";
        }
    }
    return text;
}

// With neither of the two.
inline std::string Happened(const std::string& log) {
    return Happened(log, [](std::string_view line) { return BelongsToSelection(line) || BelongsToCreation(line); });
}

}  // namespace wncom::test
