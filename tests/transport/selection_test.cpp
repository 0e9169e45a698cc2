#include <objbase.h>

#include "tests/transport/TransportFixture.h"
#include "wncom/PortMap.h"

namespace wncom::test {
namespace {

constexpr const char* kCreateFailed = "JobControlFactory::Create(), Create() failed, 80004005";
const std::string kSelect = "JobControlFactory::selectBinary, ";

class SelectionTest : public TransportFixture {
protected:
    void SetUp() override {
        TransportFixture::SetUp();
        Initialised();
    }
    // Makes an object for the entry that the port map answers, and gives it back.
    void Use(const std::string& entry) {
        Entry(entry);
        m_factory->Delete(m_factory->Create(kFakeAddress));
    }
    std::string ThrownFor(const std::string& entry) {
        Entry(entry);
        return Thrown([&] { m_factory->Delete(m_factory->Create(kFakeAddress)); });
    }
    static std::string PathOf(const char* library) { return ProgramFolder() + "/" + library; }
};

TEST_F(SelectionTest, IsLoggedFromTheEntryToTheObject) {
    Entry("b");
    RmtJobControl* const object = m_factory->Create(kFakeAddress);
    ASSERT_NE(nullptr, object);
    std::vector<std::string> lines = Lines();
    std::erase_if(lines, [](const std::string& line) {
        return line.find("ortMap") != std::string::npos && line.find("portMapTransportEntry") == std::string::npos;
    });
    EXPECT_THAT(
        lines,
        ElementsAre("3 Entering JobControlFactory::Create().", "3 Entering JobControlFactory::selectBinary().",
                    "4 JobControlFactory::selectBinary(), network mapping at this point: net",
                    "4 " + kSelect + "netCheck: network.", "4 " + kSelect + "portMapTransportEntry: b.",
                    "4 " + kSelect + "portMapTransportEntry is NOT empty", "4 " + kSelect + "empty: 0",
                    "4 " + kSelect + "inside else", "4 " + kSelect + "requiring non-network type, using b.",
                    "4 " + kSelect + "found type b in the map.", "4 " + kSelect + "m_DllName: FakeTransportB.dll.",
                    "4 " + kSelect + "partial m_DllPath: " + PathOf("") + ".",
                    "4 " + kSelect + "complete m_DllPath: " + PathOf("FakeTransportB.dll") + ".",
                    "4 " + kSelect + "loading DLL", "3 Exiting JobControlFactory::selectBinary().",
                    "3 JobControlFactory::Create(). in selectBinary if", "3 JobControlFactory::Create(). after maker",
                    "3 JobControlFactory::Create(). in Null if",
                    "4 JobControlFactory::Create(), GetProcAddress() succeeded.",
                    "3 Exiting JobControlFactory::Create()."));
    m_factory->Delete(object);
    EXPECT_THAT(Lines(), ElementsAre("3 Entering JobControlFactory::Delete().",
                                     "4 JobControlFactory::Delete(), GetProcAddress() succeeded.",
                                     "4 JobControlFactory::Delete(), called demaker successfully.",
                                     "3 Exiting JobControlFactory::Delete()."));
    EXPECT_EQ(0, Script().LiveObjects());
}

TEST_F(SelectionTest, TakesTheNetworkMappingForAnEmptyEntryAndForNetwork) {
    Use("network");
    Use("");
    EXPECT_EQ(2u, Script().CallsOf("FakeTransport.maker").size());
    EXPECT_TRUE(
        ContainsInOrder(Lines(), {"4 " + kSelect + "inside if", "4 " + kSelect + "requiring network type, using net.",
                                  "4 " + kSelect + "portMapTransportEntry is empty", "4 " + kSelect + "empty: 1",
                                  "4 " + kSelect + "inside if"}));
}

TEST_F(SelectionTest, TakesNetworkWithACapitalForAType) {
    EXPECT_EQ(kCreateFailed, ThrownFor("Network"));
    EXPECT_TRUE(ContainsInOrder(Lines(), {"4 " + kSelect + "requiring non-network type, using Network.",
                                          "2 " + kSelect + "couldn't find Network in the map."}));
}

// The entry passes through two code pages on its way, so only some characters arrive as they were.
TEST_F(SelectionTest, FindsATypeOutsideAsciiOnlyWhereBothCodePagesAgree) {
    Script().SetCatalogue("net", {{"\xC3\xA9", "FakeTransportB.dll"}, {"\xE2\x82\xAC", "FakeTransportB.dll"}});
    JobControlFactory factory;
    factory.Initialize();
    Entry("\xC3\xA9");
    EXPECT_EQ("nothing", Thrown([&] { factory.Delete(factory.Create(kFakeAddress)); }));
    Entry("\xE2\x82\xAC");
    EXPECT_EQ(kCreateFailed, Thrown([&] { factory.Create(kFakeAddress); }));
}

TEST_F(SelectionTest, SkipsTheReloadOfTheSameFileWhateverItsType) {
    Use("network");
    Lines();
    Script().ForgetCalls();
    Use("same");
    EXPECT_TRUE(ContainsInOrder(Lines(), {"4 " + kSelect + "skipping reload of same DLL"}));
    EXPECT_THAT(Script().CallsOf("FakeTransport"),
                ElementsAre("FakeTransport.maker()", "FakeTransport.demaker(object)"));
}

TEST_F(SelectionTest, SwitchesLibrariesThroughTheOldOnesDemaker) {
    Use("network");
    Lines();
    Script().ForgetCalls();
    Use("b");
    EXPECT_TRUE(
        ContainsInOrder(Lines(), {"4 " + kSelect + "loading DLL", "4 " + kSelect + "free'ing previous library",
                                  "3 Entering JobControlFactory::Delete().", "3 Exiting JobControlFactory::Delete().",
                                  "3 Exiting JobControlFactory::selectBinary()."}));
    EXPECT_THAT(Script().CallsOf("FakeTransport"), ElementsAre("FakeTransport.demaker(null)"));
    HMODULE old = nullptr;
    EXPECT_FALSE(GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT, "FakeTransport.dll", &old));
    EXPECT_THAT(Script().CallsOf("FakeTransportB"),
                ElementsAre("FakeTransportB.maker()", "FakeTransportB.demaker(object)"));
}

TEST_F(SelectionTest, LeavesNoLibraryAfterAFailedLoadAndTriesAgain) {
    Use("network");
    for (int i = 0; i < 2; ++i) {
        Lines();
        EXPECT_EQ(kCreateFailed, ThrownFor("missing"));
        EXPECT_TRUE(ContainsInOrder(
            Lines(),
            {"4 " + kSelect + "loading DLL", "2 " + kSelect + "LoadLibrary for missing  failed.",
             "2 JobControlFactory::selectBinary() error, JobControlFactory::selectBinary(), LoadLibrary() failed",
             "2 JobControlFactory::Create() error, JobControlFactory::selectBinary(), selectBinary failed"}));
    }
    m_factory->Delete(nullptr);
    EXPECT_EQ("3 Exiting JobControlFactory::Delete(), nothing to do.", Lines().back());
    EXPECT_EQ("FakeTransport.demaker(null)", Script().CallsOf("FakeTransport").back());
}

TEST_F(SelectionTest, TellsTheSystemsErrorOfAFailedLoad) {
    EXPECT_EQ(kCreateFailed, ThrownFor("missing"));
    char* text = nullptr;
    FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM, nullptr, ERROR_MOD_NOT_FOUND, 0,
                   reinterpret_cast<LPSTR>(&text), 0, nullptr);
    const std::string message(text);
    LocalFree(text);
    EXPECT_TRUE(ContainsInOrder(Lines(), {"2 " + kSelect + "LoadLibrary for missing  failed.",
                                          "3 " + message.substr(0, message.find('\r'))}));
}

TEST_F(SelectionTest, RefusesAPathOf1024BytesAsAFailedLoad) {
    SetFolderValue("builddllpath", Terminated(PathOf("") + std::string(1000 - PathOf("").size(), '/')));
    const std::string fits(19, 'f');
    Script().SetCatalogue("net", {{"fits", fits + ".dll"}, {"long", fits + "g.dll"}});
    JobControlFactory factory;
    factory.Initialize();
    Use("network");
    for (const char* type : {"fits", "long"}) {
        Entry(type);
        EXPECT_EQ(kCreateFailed, Thrown([&] { factory.Create(kFakeAddress); }));
    }
    factory.Delete(nullptr);
    EXPECT_EQ("3 Exiting JobControlFactory::Delete(), nothing to do.", Lines().back());
}

TEST_F(SelectionTest, KeepsALibraryWithoutMakerLoaded) {
    for (const char* outcome : {"loading DLL", "skipping reload of same DLL"}) {
        EXPECT_EQ(kCreateFailed, ThrownFor("nomaker"));
        EXPECT_TRUE(ContainsInOrder(
            Lines(), {"4 " + kSelect + outcome, "3 JobControlFactory::Create(). after maker",
                      "2 JobControlFactory::Create(), GetProcAddress() failed.",
                      "2 JobControlFactory::Create() error, JobControlFactory::Create(), GetProcAddress() failed."}));
    }
}

TEST_F(SelectionTest, CannotGiveAnObjectBackWithoutDemaker) {
    Entry("nodemaker");
    RmtJobControl* const object = m_factory->Create(kFakeAddress);
    Lines();
    m_factory->Delete(object);
    EXPECT_THAT(Lines(), ElementsAre("3 Entering JobControlFactory::Delete().",
                                     "4 JobControlFactory::Delete(), GetProcAddress() failed.",
                                     "3 Exiting JobControlFactory::Delete()."));
    EXPECT_EQ(1, Script().LiveObjects());
    const HMODULE library = LoadLibraryA(PathOf("FakeTransportNoDemaker.dll").c_str());
    reinterpret_cast<TransportUnmake>(reinterpret_cast<void (*)()>(GetProcAddress(library, "FakeTakeBack")))(object);
    FreeLibrary(library);
}

TEST_F(SelectionTest, HandsOutANullObject) {
    Script().FailIn("FakeTransport.maker", {Fault::Null});
    EXPECT_EQ(nullptr, m_factory->Create(kFakeAddress));
    EXPECT_EQ("3 Exiting JobControlFactory::Create().", Lines().back());
}

TEST_F(SelectionTest, WrapsACommonExceptionOfMakerAndLetsOthersThrough) {
    Script().FailIn("FakeTransport.maker", {Fault::CommonException}, 1);
    Script().FailIn("FakeTransport.maker", {Fault::Integer}, 2);
    Script().FailIn("FakeTransport.maker", {Fault::OutOfMemory}, 3);
    EXPECT_EQ(kCreateFailed, ThrownFor("network"));
    EXPECT_EQ("2 JobControlFactory::Create() error, scripted", Lines().back());
    EXPECT_EQ("int 42", ThrownFor("network"));
    EXPECT_EQ("bad_alloc", ThrownFor("network"));
}

TEST_F(SelectionTest, KeepsExceptionsOfDemakerToItself) {
    Script().FailIn("FakeTransport.demaker", {Fault::CommonException}, 1);
    Script().FailIn("FakeTransport.demaker", {Fault::Integer}, 2);
    Use("network");
    EXPECT_TRUE(ContainsInOrder(
        Lines(), {"2 JobControlFactory::Delete() error, scripted", "3 Exiting JobControlFactory::Delete()."}));
    Use("network");
    EXPECT_TRUE(ContainsInOrder(Lines(), {"2 JobControlFactory::Delete() unknown exception seen.",
                                          "3 Exiting JobControlFactory::Delete()."}));
}

TEST_F(SelectionTest, GivesUpLibraryLogAndComWhenDestroyed) {
    Use("network");
    Lines();
    Script().ForgetCalls();
    m_factory.reset();
    EXPECT_THAT(Lines(), ElementsAre("3 Entering JobControlFactory::Delete().",
                                     "4 JobControlFactory::Delete(), GetProcAddress() succeeded.",
                                     "4 JobControlFactory::Delete(), called demaker successfully.",
                                     "3 Exiting JobControlFactory::Delete().",
                                     "4 ~JobControlFactory(), successfully freed loaded library."));
    EXPECT_THAT(Script().Calls(), ElementsAre("FakeTransport.demaker(null)"));
    std::uint8_t level = 0;
    LogDestination destination{};
    EXPECT_EQ(1, QueryLogging(&level, &destination)) << "the capture's own reference";
    void* object = nullptr;
    EXPECT_EQ(CO_E_NOTINITIALIZED,
              CoCreateInstance(CLSID_PortMap, nullptr, CLSCTX_INPROC_SERVER, IPortMap::kIid, &object));
}

// Whatever goes wrong at whichever outside call, nothing is lost and the next selection works.
TEST_F(SelectionTest, SurvivesAnyFaultAtAnyCall) {
    Use("b");
    Script().ForgetCalls();
    Use("network");
    const unsigned calls = Script().CallCount();
    ASSERT_GT(calls, 15u);
    for (const Fault fault :
         {Fault::Status, Fault::Null, Fault::CommonException, Fault::OutOfMemory, Fault::Integer}) {
        for (unsigned number = 1; number <= calls; ++number) {
            Script().Reset();
            Use("b");
            Script().ForgetCalls();
            Script().FailAtCall(number, {fault, E_ABORT});
            ThrownFor("network");
            EXPECT_EQ(0, Script().LiveObjects()) << "fault " << static_cast<int>(fault) << " at call " << number;
        }
    }
    Script().Reset();
    EXPECT_EQ("nothing", ThrownFor("b"));
}

}  // namespace
}  // namespace wncom::test
