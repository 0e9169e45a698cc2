// Asking the port map: which entry belongs to an address, and what each failure on the way makes of it.
#include "tests/transport/TransportFixture.h"
#include "wncom/Bstr.h"

namespace wncom::test {
namespace {

class PortMapTest : public TransportFixture {
protected:
    std::string Ask() {
        std::string entry;
        const std::string thrown = Thrown([&] { entry = m_factory->checkPortMap(kFakeAddress).c_str(); });
        return thrown == "nothing" ? "'" + entry + "'" : thrown;
    }
};

TEST_F(PortMapTest, AnswersTheEntryOfTheLastServiceWhoseAddressHoldsTheSearchedOne) {
    struct Case {
        std::vector<FakeService> services;
        const char* entry;
    };
    for (const Case& given :
         {Case{{{kFakeAddress, "first"}, {"http://other", "x"}, {kFakeAddress, "last"}, {"y", "z"}}, "'last'"},
          Case{{{"HTTP://device/service", "capitals"}, {"http://device/service/further", "longer"}}, "'longer'"},
          Case{{{"HTTP://device/service", "capitals"}, {"http://device", "shorter"}}, "''"},
          Case{{{kFakeAddress, "\xE2\x82\xAC"}}, "'\x80'"}, Case{{}, "''"}}) {
        Script().SetServices(given.services);
        EXPECT_EQ(Ask(), given.entry);
    }
    Script().SetServices({{"http://other", "b"}});
    const Bstr address(OLESTR("http://device/service"));
    Bstr entry;
    EXPECT_EQ(m_factory->getTransportTypeFromPortMapData(address.get(), entry.put()), S_OK);
    EXPECT_FALSE(entry) << "no match is a success without an entry";
}

// Every call of a lookup along three services that match, failing in every way, in the order of the calls.
TEST_F(PortMapTest, EachFailureIsLoggedAndEndsOrGoesOn) {
    struct Kind {
        const char* name;
        Misbehaviour misbehaviour;
    };
    const std::vector<FakeService> services = {{kFakeAddress, "one"}, {kFakeAddress, "two"}, {"http://other", "x"}};
    Script().SetServices(services);
    EXPECT_EQ(Ask(), "'two'");
    std::string transcript = "== all is well\n" + Happened();
    const std::vector<std::string> calls = Script().Calls();
    for (std::size_t number = 1; number <= calls.size(); ++number) {
        transcript += "== " + std::to_string(number) + ": " + calls[number - 1] + "\n";
        for (const Kind& kind : {Kind{"fails", {Fault::Status, E_ABORT}}, Kind{"S_FALSE", {Fault::Status, S_FALSE}},
                                 Kind{"nothing", {Fault::Null}}, Kind{"throws", {Fault::Integer}}}) {
            Begin();
            Script().SetServices(services);
            Script().FailAtCall(static_cast<unsigned>(number), kind.misbehaviour);
            transcript += std::string(kind.name) + ": " + Ask();
            transcript += ", " + std::to_string(Script().CallCount()) + " calls\n";
            for (const std::string& line : MaskedLines(m_log.Text())) {
                if (line.starts_with("2 ")) transcript += "  " + line + "\n";
            }
            EXPECT_EQ(Script().LiveObjects(), 0);
        }
    }
    ExpectGolden("transport/golden/port-map.log", transcript);
}

}  // namespace
}  // namespace wncom::test
