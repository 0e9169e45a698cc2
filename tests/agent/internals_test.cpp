// Parts of the agent by themselves: what its operations have no occasion to ask of them.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "agent/Array2XML.h"
#include "agent/WNSimpleCache.h"
#include "tests/fakes/FakeScript.h"
#include "tests/support/Com.h"
#include "tests/support/Golden.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

TEST(SimpleCacheTest, RemovesATicketOrTellsWhyNot) {
    ASSERT_EQ(Hex(RegisterFakeComponents(ProgramFolder())), Hex(S_OK));
    const Apartment apartment;
    const LogCapture log(5);
    std::string transcript;
    for (const Misbehaviour& wrong :
         {Misbehaviour{}, Misbehaviour{Fault::Status, E_ACCESSDENIED}, Misbehaviour{Fault::Integer}}) {
        Script().Reset();
        Script().FailIn("XMLCacheMgr.RemoveXML", wrong);
        _WNSimpleCache cache;
        transcript += std::to_string(cache.RemoveFromCache(Text("device-7").get())) + "\n";
    }
    EXPECT_EQ(Script().CallsOf("XMLCacheMgr.RemoveXML"),
              std::vector<std::string>{"XMLCacheMgr.RemoveXML(device-7-capTicket)"});
    Script().FailIn("XMLCacheMgr.create", {Fault::Status, E_ACCESSDENIED});
    transcript += std::to_string(_WNSimpleCache().RemoveFromCache(nullptr)) + "\n";
    for (const std::string& line : MaskedLines(log.Text())) transcript += line + "\n";
    ExpectGolden("agent/golden/removal.log", transcript);
    EXPECT_EQ(Script().LiveObjects(), 0);
}

TEST(Array2XMLTest, LongListsOfEmptyAndLongItemsFit) {
    const std::string item(1000, 'x');
    std::vector<const char*> items(20000, "");
    items.push_back(item.c_str());
    items.push_back(nullptr);
    const std::string document = Array2XML(items.data(), "SupportedEvents", "Event").get();
    EXPECT_TRUE(document.ends_with("  <Event>" + item + "</Event>\n</SupportedEvents>\n"));
}

}  // namespace
}  // namespace wncom::test
