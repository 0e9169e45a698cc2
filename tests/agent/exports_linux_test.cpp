// What the module's file says of itself on this host.
#include <gtest/gtest.h>

#include <algorithm>
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
    std::sort(names.begin(), names.end());
    return names;
}

TEST(Exports, AreTheEntryPointsAndNothingElse) {
    using Names = std::vector<std::string>;
    const Names server = {"DllCanUnloadNow", "DllGetClassObject", "DllRegisterServer", "DllUnregisterServer"};
    EXPECT_EQ(ExportsOf(ProgramFolder() + "/wnCOM.dll"), server);
    EXPECT_EQ(ExportsOf(ProgramFolder() + "/wnComponents.dll"), server);
    EXPECT_EQ(ExportsOf(ProgramFolder() + "/wnHttpTransport.dll"), (Names{"demaker", "maker"}));
}

}  // namespace
}  // namespace wncom::test
