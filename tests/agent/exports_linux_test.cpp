// What the module's file says of itself on this host.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

std::vector<std::string> ExportsOf(const std::string& path) {
    const std::string command = "nm -D --defined-only --format=posix '" + path + "'";
    const std::unique_ptr<FILE, int (*)(FILE*)> lines(popen(command.c_str(), "r"), pclose);
    std::vector<std::string> names;
    char line[1024];
    while (lines && std::fgets(line, sizeof(line), lines.get())) {
        const std::string text(line);
        names.push_back(text.substr(0, text.find(' ')));
    }
    return names;
}

TEST(Exports, AreTheFourEntryPointsOfAServerAndNothingElse) {
    for (const char* module : {"wnCOM.dll", "wnComponents.dll"}) {
        EXPECT_THAT(ExportsOf(ProgramFolder() + "/" + module),
                    testing::UnorderedElementsAre("DllCanUnloadNow", "DllGetClassObject", "DllRegisterServer",
                                                  "DllUnregisterServer"))
            << module;
    }
}

TEST(Exports, OfATransportLibraryAreItsTwo) {
    EXPECT_THAT(ExportsOf(ProgramFolder() + "/wnHttpTransport.dll"),
                testing::UnorderedElementsAre("maker", "demaker"));
}

}  // namespace
}  // namespace wncom::test
