// Choosing and loading a library, and making and destroying its objects.
#include <objbase.h>

#include "tests/transport/TransportFixture.h"
#include "wncom/PortMap.h"

namespace wncom::test {
namespace {

constexpr const char* kCreateFailed = "JobControlFactory::Create(), Create() failed, 80004005";

class SelectionTest : public TransportFixture {
protected:
    SelectionTest() { Initialise(); }

    void Initialise() {
        m_factory->Initialize();
        Forget();
    }
    // What was called and logged, without the lookup in the port map, but for its answer.
    std::string Selected() const {
        return test::Happened(m_log.Text(), [](std::string_view line) {
            if (line.starts_with("> ") ? BelongsToSelection(line) : BelongsToCreation(line)) return true;
            return line.find("ortMap") != std::string_view::npos &&
                   line.find("portMapTransportEntry") == std::string_view::npos;
        });
    }
    static std::string PathOf(const char* library) { return ProgramFolder() + "/" + library; }
};

struct Situation {
    const char* name;
    std::vector<const char*> entries;
    void (*prepare)() = [] {};
};

TEST_F(SelectionTest, FollowsTheEntryOrTellsWhyNot) {
    const Situation situations[] = {
        {"a type of the catalogue", {"b"}},
        {"network, an empty entry, and a type with the same library", {"network", "", "same"}},
        {"network with a capital is a type", {"Network"}},
        {"another library", {"network", "b"}},
        {"a library that is missing, again, and one that is there", {"network", "missing", "missing", "b"}},
        {"a name outside the C locale, after a library", {"network", "foreign"}},
        {"a library without maker, twice", {"nomaker", "nomaker"}},
        {"maker makes nothing", {"b"}, [] { Script().FailIn("FakeTransportB.maker", {Fault::Null}); }},
        {"maker throws what is known",
         {"b"},
         [] { Script().FailIn("FakeTransportB.maker", {Fault::CommonException}); }},
        {"maker throws something else", {"b"}, [] { Script().FailIn("FakeTransportB.maker", {Fault::Integer}); }},
        {"demaker throws what is known",
         {"b"},
         [] { Script().FailIn("FakeTransportB.demaker", {Fault::CommonException}, 1); }},
        {"demaker throws something else",
         {"b"},
         [] { Script().FailIn("FakeTransportB.demaker", {Fault::Integer}, 1); }},
        {"there is no port map",
         {"b"},
         [] {
             Script().FailIn("PortMap.create", {Fault::Status, E_ABORT}, 1);
         }},
    };
    std::string transcript;
    for (const Situation& situation : situations) {
        Begin();
        Initialise();
        situation.prepare();
        transcript += std::string("== ") + situation.name + "\n";
        for (const char* entry : situation.entries)
            transcript += "'" + std::string(entry) + "': " + Use(entry) + "\n";
        m_factory.reset();
        transcript += Selected();
    }
    ExpectGolden("transport/golden/selection.log", transcript);
}

// The entry passes through two code pages on its way, so only some characters arrive as they were.
TEST_F(SelectionTest, FindsATypeOutsideAsciiOnlyWhereBothCodePagesAgree) {
    Begin();
    Script().SetCatalogue("net", {{"\xC3\xA9", "FakeTransportB.dll"}, {"\xE2\x82\xAC", "FakeTransportB.dll"}});
    Initialise();
    EXPECT_EQ(Use("\xC3\xA9"), "nothing");
    EXPECT_EQ(Use("\xE2\x82\xAC"), kCreateFailed);
}

TEST_F(SelectionTest, SwitchingLibrariesUnloadsTheOldOne) {
    Use("network");
    for (const char* entry : {"foreign", "b"}) {
        EXPECT_EQ(Use(entry) == "nothing", std::string(entry) == "b");
        HMODULE old = nullptr;
        EXPECT_FALSE(GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT, "FakeTransport.dll", &old));
    }
}

TEST_F(SelectionTest, CannotGiveAnObjectBackWithoutDemaker) {
    Entry("nodemaker");
    RmtJobControl* const object = m_factory->Create(kFakeAddress);
    Forget();
    m_factory->Delete(object);
    EXPECT_EQ(Happened(),
              "3 JobControlFactory::Entering JobControlFactory::Delete().\n"
              "4 JobControlFactory::JobControlFactory::Delete(), GetProcAddress() failed.\n"
              "3 JobControlFactory::Exiting JobControlFactory::Delete().\n");
    EXPECT_EQ(Script().LiveObjects(), 1);
    const HMODULE library = LoadLibraryA(PathOf("FakeTransportNoDemaker.dll").c_str());
    reinterpret_cast<TransportUnmake>(reinterpret_cast<void (*)()>(GetProcAddress(library, "FakeTakeBack")))(object);
    FreeLibrary(library);
}

TEST_F(SelectionTest, GivesUpLogAndComWhenDestroyed) {
    Use("network");
    m_factory.reset();
    std::uint8_t level = 0;
    LogDestination destination{};
    EXPECT_EQ(QueryLogging(&level, &destination), 1) << "the capture's own reference";
    void* object = nullptr;
    EXPECT_EQ(CoCreateInstance(CLSID_PortMap, nullptr, CLSCTX_INPROC_SERVER, IPortMap::kIid, &object),
              CO_E_NOTINITIALIZED);
}

}  // namespace
}  // namespace wncom::test
