// Reading the catalogue: what is asked and logged, what is kept, and how each failure is reported.
#include "common/CPWStringBuffer.h"
#include "tests/transport/TransportFixture.h"
#include "transport/RegistryPaths.h"

namespace wncom::test {
namespace {

constexpr const char* kFoldersKey = "SOFTWARE\\Quillbeck\\QBNorvel\\Logging";
constexpr const char* kAccessor = "XMLSimpleAccessor.";

using CatalogueTest = TransportFixture;

struct Situation {
    const char* name;
    void (*prepare)();
};

void Fail(const char* operation, HRESULT status, unsigned occurrence) {
    Script().FailIn(std::string(kAccessor) + operation, {Fault::Status, status}, occurrence);
}

const Situation kSituations[] = {
    {"three entries, the third of a type that is there",
     [] {
         Script().SetCatalogue("net", {{"net", "A.dll"}, {"Net", "B.dll"}, {"net", "C.dll"}});
     }},
    {"an entry without a name ends the list",
     [] {
         Script().SetCatalogue("net", {{"net", "A.dll"}, {"b", "B.dll"}, {"c", "C.dll"}});
         Script().ForgetQuery("./transportdlls/jobcontrol/dll[2]/name");
     }},
    {"no entries", [] { Script().SetCatalogue("net", {}); }},
    {"a name that fails", [] { Fail("GetXML", E_ABORT, 4); }},
    {"no path", [] { Fail("GetXML", S_FALSE, 2); }},
    {"a path that fails", [] { Fail("GetXML", E_ABORT, 2); }},
    {"no network mapping", [] { Fail("GetXML", S_FALSE, 1); }},
    {"a network mapping that fails", [] { Fail("GetXML", E_ABORT, 1); }},
    {"the delimiter is refused", [] { Fail("SetDelimiter", E_ABORT, 0); }},
    {"the file is not loaded", [] { Fail("LoadXML", E_INVALIDARG, 0); }},
    {"there is no accessor", [] { Fail("create", E_ABORT, 0); }},
    {"no folder of libraries",
     [] {
         RegDeleteTreeA(HKEY_LOCAL_MACHINE, kFoldersKey);
         SetFolderValue("pathtotransportsxml", Terminated("C:\\catalogue\\"));
     }},
    {"no folders at all", [] { RegDeleteTreeA(HKEY_LOCAL_MACHINE, kFoldersKey); }},
};

TEST_F(CatalogueTest, IsReadOrTellsWhyNot) {
    std::string transcript;
    for (const Situation& situation : kSituations) {
        Begin();
        situation.prepare();
        transcript += std::string("== ") + situation.name + ": " + Thrown([&] { m_factory->Initialize(); }) + "\n";
        transcript += Happened();
        EXPECT_EQ(Script().LiveObjects(), 0) << "the accessor is released";
    }
    ExpectGolden("transport/golden/catalogue.log", transcript);
}

TEST_F(CatalogueTest, TheFirstEntryOfATypeWins) {
    Script().SetCatalogue("net", {{"net", "FakeTransport.dll"}, {"net", "FakeTransportB.dll"}});
    m_factory->Initialize();
    EXPECT_EQ(Use("network"), "nothing");
    EXPECT_EQ(Script().CallsOf("FakeTransport.maker").size(), 1U);
}

// A text that the accessor claims to have found but did not give is an empty one.
TEST_F(CatalogueTest, TextsThatAreNullAreEmptyOnes) {
    Script().FailIn("XMLSimpleAccessor.GetXML", {Fault::Null}, 1);
    Script().FailIn("XMLSimpleAccessor.GetXML", {Fault::Null}, 3);
    m_factory->Initialize();
    EXPECT_EQ(Use("network"), "nothing") << "the empty mapping names the empty type";
}

TEST_F(CatalogueTest, AFolderIsAnyValueOfAtMost1023Bytes) {
    struct Case {
        std::string data;
        DWORD type;
        std::string path;
    };
    const std::string refused = "GetPathFromRegistry() - RegQueryValueEx() failed, 80004005";
    const std::string longest(1023, 'x');
    for (const Case& given :
         {Case{Terminated("C:\\dlls\\"), REG_SZ, "C:\\dlls\\"},
          Case{"C:\\dlls\\", REG_BINARY, "C:\\dlls\\"},  // without its terminator
          Case{std::string("ABC\0", 4), REG_DWORD, "ABC"}, Case{"", REG_SZ, ""}, Case{"\xE9", REG_SZ, "\xE9"},
          Case{Terminated(longest), REG_SZ, longest}, Case{longest, REG_BINARY, longest},
          Case{longest + "x", REG_BINARY, refused}, Case{Terminated(longest + "x"), REG_SZ, refused}}) {
        SetFolderValue("builddllpath", given.data, given.type);
        std::string read;
        const std::string thrown = Thrown([&] {
            CPHeapBuffer path = GetPathFromRegistry("builddllpath");
            read = path.GetMultiByte("");
        });
        EXPECT_EQ(thrown == "nothing" ? read : thrown, given.path);
    }
}

}  // namespace
}  // namespace wncom::test
