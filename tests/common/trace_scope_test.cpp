#include <gmock/gmock.h>

#include <regex>
#include <stdexcept>

#include "tests/common/LogFixture.h"
#include "wncom/TraceScope.h"

namespace wncom::test {
namespace {

using testing::SizeIs;

class TraceScopeLines : public LogTest {
protected:
    // The identifiers in what was written, in the order of the lines.
    std::vector<std::string> CallIds() const {
        std::vector<std::string> ids;
        static const std::regex kCallId("@(\\{[0-9A-F]{8}(?:-[0-9A-F]{4}){3}-[0-9A-F]{12}\\})@");
        const std::string text = Text();
        for (std::sregex_iterator at(text.begin(), text.end(), kCallId), end; at != end; ++at)
            ids.push_back((*at)[1]);
        return ids;
    }
};

TEST_F(TraceScopeLines, PairEntryAndExitByTheCallsIdentifier) {
    Start(FileConfig(5));
    WriteWholeFile(path, "");
    const int line = __LINE__ + 1;
    { const TraceScope scope("OrbStuff::StartSession", ".\\OrbStuff"); }
    const auto ids = CallIds();
    ASSERT_THAT(ids, SizeIs(2));
    EXPECT_EQ(ids[0], ids[1]);
    EXPECT_THAT(ids[0], SizeIs(38));
    EXPECT_THAT(Messages(), testing::ElementsAre("CWendrel::ENTER OrbStuff::StartSession on line " +
                                                     std::to_string(line) + " in file .\\OrbStuff @" + ids[0] + "@",
                                                 "CWendrel::EXIT: OrbStuff::StartSession @" + ids[0] + "@"));
}

TEST_F(TraceScopeLines, TellAnExitByAnException) {
    Start(FileConfig(5));
    try {
        const TraceScope scope("A::b", "a", 1);
        throw std::runtime_error("left");
    } catch (const std::runtime_error&) {
    }
    EXPECT_THAT(CallIds(), SizeIs(2));
}

TEST_F(TraceScopeLines, TellTwoCallsOfOneFunctionApart) {
    Start(FileConfig(5));
    {
        const TraceScope outer("A::b", "a", 1);
        const TraceScope inner("A::b", "a", 1);
    }
    const auto ids = CallIds();
    ASSERT_THAT(ids, SizeIs(4));
    EXPECT_NE(ids[0], ids[1]);
    EXPECT_EQ(ids[1], ids[2]);
    EXPECT_EQ(ids[0], ids[3]);
}

TEST_F(TraceScopeLines, ObeyTheLevelOfTheirMoment) {
    Start(FileConfig(5));
    {
        const TraceScope scope("A::~A", "a", 1);
        EndLogging();
    }
    EXPECT_THAT(CallIds(), SizeIs(1));
    {
        const TraceScope scope("A::A", "a", 1);
        Start(FileConfig(5));
    }
    EXPECT_THAT(CallIds(), SizeIs(2));
    EndLogging();
    Start(FileConfig(4));
    { const TraceScope scope("A::b", "a", 1); }
    EXPECT_THAT(CallIds(), SizeIs(2));
}

}  // namespace
}  // namespace wncom::test
