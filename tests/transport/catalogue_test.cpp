#include "tests/transport/TransportFixture.h"
#include "transport/RegistryPaths.h"

namespace wncom::test {
namespace {

using CatalogueTest = TransportFixture;

TEST_F(CatalogueTest, IsReadThroughTheAccessorUpToTheFirstMissingType) {
    Script().SetCatalogue("net", {{"net", "A.dll"}});
    m_factory->Initialize();
    EXPECT_THAT(Script().Calls(),
                ElementsAre("XMLSimpleAccessor.create()", "XMLSimpleAccessor.LoadXML(C:\\catalogue\\Transports.xml)",
                            "XMLSimpleAccessor.SetDelimiter(;)", "XMLSimpleAccessor.GetXML(./networkmapping, 4)",
                            "XMLSimpleAccessor.GetXML(./path, 4)",
                            "XMLSimpleAccessor.GetXML(./transportdlls/jobcontrol/dll[1]/type, 0)",
                            "XMLSimpleAccessor.GetXML(./transportdlls/jobcontrol/dll[1]/name, 0)",
                            "XMLSimpleAccessor.GetXML(./transportdlls/jobcontrol/dll[2]/type, 0)"));
    EXPECT_EQ(0, Script().LiveObjects()) << "the accessor is released";
}

TEST_F(CatalogueTest, IsLoggedWhileItIsRead) {
    Script().SetCatalogue("net", {{"net", "A.dll"}, {"Net", "B.dll"}, {"net", "C.dll"}});
    Lines();
    m_factory->Initialize();
    const std::string folder = ProgramFolder() + "/";
    const std::string load = "4 JobControlFactory::LoadTransportInfo(), ";
    EXPECT_THAT(
        Lines(),
        ElementsAre(
            "3 Entering JobControlFactory::Initialize()", "3 Entering JobControlFactory::GetAccessor()",
            "4 Starting GetPathToTransportsXMLFromRegistry().", "4 Starting GetPathFromRegistry().",
            "4 GetPathFromRegistry() - RegOpenKeyEx() succeeded",
            "4 GetPathFromRegistry() - RegQueryValueEx() succeeded",
            "4 GetPathFromRegistry() - RegCloseKey() succeeded",
            "4 JobControlFactory::GetAccessor() - workingDir from GetPathTo....(): C:\\catalogue\\",
            "4 JobControlFactory::GetAccessor() - full path to transports file: C:\\catalogue\\Transports.xml",
            "4 JobControlFactory::GetAccessor() - create simple accessor succeeded",
            "4 JobControlFactory::GetAccessor(), load XML succeeded.",
            "3 Entering JobControlFactory::LoadTransportInfo()", load + "create SimpleAccessor succeeded",
            load + "CPNMPath: ./networkmapping", load + "network mapping: net", load + "CPPathPath: ./path",
            load + "CPResultPath: unused", "4 Starting GetPathToBuildDllsFromRegistry().",
            "4 Starting GetPathFromRegistry().", "4 GetPathFromRegistry() - RegOpenKeyEx() succeeded",
            "4 GetPathFromRegistry() - RegQueryValueEx() succeeded",
            "4 GetPathFromRegistry() - RegCloseKey() succeeded", load + "path: " + folder,
            load + "getIndex is now: 1", load + "CPPathTypeTrack: ./transportdlls/jobcontrol/dll[1]/type",
            load + "CPPathNameTrack: ./transportdlls/jobcontrol/dll[1]/name", load + "CPResultType: net",
            load + "CPResultName: A.dll", load + "successfully inserted into dlls map a type/name pair for net",
            load + "getIndex is now: 2", load + "CPPathTypeTrack: ./transportdlls/jobcontrol/dll[2]/type",
            load + "CPPathNameTrack: ./transportdlls/jobcontrol/dll[2]/name", load + "CPResultType: Net",
            load + "CPResultName: B.dll", load + "successfully inserted into dlls map a type/name pair for Net",
            load + "getIndex is now: 3", load + "CPPathTypeTrack: ./transportdlls/jobcontrol/dll[3]/type",
            load + "CPPathNameTrack: ./transportdlls/jobcontrol/dll[3]/name", load + "CPResultType: net",
            load + "CPResultName: C.dll", load + "type/name pair for net already in dlls map",
            load + "getIndex is now: 4", load + "CPPathTypeTrack: ./transportdlls/jobcontrol/dll[4]/type",
            load + "CPPathNameTrack: ./transportdlls/jobcontrol/dll[4]/name",
            "2 JobControlFactory::LoadTransportInfo(), GetXML on type failed"));
}

TEST_F(CatalogueTest, TheFirstEntryOfATypeWins) {
    Script().SetCatalogue("net", {{"net", "FakeTransport.dll"}, {"net", "FakeTransportB.dll"}});
    m_factory->Initialize();
    m_factory->Delete(m_factory->Create(kFakeAddress));
    EXPECT_EQ(1u, Script().CallsOf("FakeTransport.maker").size());
}

TEST_F(CatalogueTest, TheListEndsAtAnEntryWithoutAName) {
    Script().SetCatalogue("net", {{"net", "A.dll"}, {"b", "B.dll"}, {"c", "C.dll"}});
    Script().ForgetQuery("./transportdlls/jobcontrol/dll[2]/name");
    EXPECT_EQ("nothing", Thrown([&] { m_factory->Initialize(); }));
    EXPECT_EQ("XMLSimpleAccessor.GetXML(./transportdlls/jobcontrol/dll[2]/name, 0)", Script().Calls().back());
    EXPECT_EQ("4 JobControlFactory::LoadTransportInfo(), XML name get failed", Lines().back());
}

TEST_F(CatalogueTest, WithoutEntriesEverySelectionMissesTheMap) {
    Script().SetCatalogue("net", {});
    m_factory->Initialize();
    Lines();
    EXPECT_EQ("JobControlFactory::Create(), Create() failed, 80004005",
              Thrown([&] { m_factory->Create(kFakeAddress); }));
    EXPECT_TRUE(ContainsInOrder(
        Lines(),
        {"2 JobControlFactory::selectBinary, couldn't find net in the map.",
         "2 JobControlFactory::selectBinary() error, JobControlFactory::selectBinary, couldn't find item in the map.",
         "2 JobControlFactory::Create() error, JobControlFactory::selectBinary(), selectBinary failed"}));
}

// A text that the accessor claims to have found but did not give is an empty one.
TEST_F(CatalogueTest, TextsThatAreNullAreEmptyOnes) {
    Script().FailIn("XMLSimpleAccessor.GetXML", {Fault::Null}, 1);
    Script().FailIn("XMLSimpleAccessor.GetXML", {Fault::Null}, 3);
    EXPECT_EQ("nothing", Thrown([&] { m_factory->Initialize(); }));
    m_factory->Delete(m_factory->Create(kFakeAddress));
    EXPECT_EQ(1u, Script().CallsOf("FakeTransport.maker").size()) << "the empty mapping names the empty type";
}

struct CatalogueFailure {
    const char* name;
    const char* operation;
    unsigned occurrence;
    HRESULT status;
    std::string thrown;
    std::vector<std::string> logged;
};
void PrintTo(const CatalogueFailure& failure, std::ostream* out) { *out << failure.name; }

class CatalogueFailureTest : public TransportFixture, public testing::WithParamInterface<CatalogueFailure> {};

TEST_P(CatalogueFailureTest, IsLoggedAndThrownByInitialize) {
    Script().FailIn(GetParam().operation, {Fault::Status, GetParam().status}, GetParam().occurrence);
    EXPECT_EQ(GetParam().thrown, Thrown([&] { m_factory->Initialize(); }));
    std::vector<std::string> logged = GetParam().logged;
    const std::string text = GetParam().thrown.substr(0, GetParam().thrown.rfind(", "));
    logged.push_back("2 " + text);
    logged.push_back("2 JobControlFactory::Initialize() error, " + text);
    EXPECT_TRUE(ContainsInOrder(Lines(), logged));
}

std::string AccessorFailed(const std::string& status) {
    return "JobControlFactory::GetAccessor(), error code:" + status + " see log messages";
}
std::string LoadFailed(const std::string& status) {
    return "JobControlFactory::LoadTransportInfo(), error code:" + status + " see log messages";
}

INSTANTIATE_TEST_SUITE_P(
    Each, CatalogueFailureTest,
    testing::Values(
        CatalogueFailure{"AccessorNotCreated",
                         "XMLSimpleAccessor.create",
                         0,
                         E_ABORT,
                         AccessorFailed("-2147467260") + ", 80004004",
                         {"2 JobControlFactory::GetAccessor(), failed to create instance of XMLSimpleAccessor"}},
        CatalogueFailure{"FileNotLoaded",
                         "XMLSimpleAccessor.LoadXML",
                         0,
                         E_INVALIDARG,
                         AccessorFailed("-2147024809") + ", 80070057",
                         {"2 JobControlFactory::GetAccessor(), problem loading XML"}},
        CatalogueFailure{"DelimiterRefused",
                         "XMLSimpleAccessor.SetDelimiter",
                         0,
                         E_ABORT,
                         LoadFailed("-2147467260") + ", 80004004",
                         {"2 JobControlFactory::LoadTransportInfo(), unable to set delimiter"}},
        CatalogueFailure{"NoNetworkMapping",
                         "XMLSimpleAccessor.GetXML",
                         1,
                         S_FALSE,
                         LoadFailed("-2147467259") + ", 80004005",
                         {"2 JobControlFactory::LoadTransportInfo(), GetXML on network mapping failed"}},
        CatalogueFailure{"NetworkMappingFails",
                         "XMLSimpleAccessor.GetXML",
                         1,
                         E_ABORT,
                         LoadFailed("-2147467259") + ", 80004005",
                         {"2 JobControlFactory::LoadTransportInfo(), GetXML on network mapping failed"}},
        CatalogueFailure{"NoPath",
                         "XMLSimpleAccessor.GetXML",
                         2,
                         S_FALSE,
                         LoadFailed("-2147467259") + ", 80004005",
                         {"2 JobControlFactory::LoadTransportInfo(), GetXML on path failed"}},
        CatalogueFailure{"NameFails",
                         "XMLSimpleAccessor.GetXML",
                         4,
                         E_ABORT,
                         LoadFailed("-2147467260") + ", 80004004",
                         {"4 JobControlFactory::LoadTransportInfo(), XML name get failed"}}),
    [](const auto& test) { return test.param.name; });

class FolderValueTest : public TransportFixture {
protected:
    static std::string Path(const std::string& data, DWORD type = REG_SZ) {
        SetFolderValue("builddllpath", data, type);
        std::string read;
        const std::string thrown = Thrown([&] {
            CPHeapBuffer path = GetPathFromRegistry("builddllpath");
            read = path.GetMultiByte("");
        });
        return thrown == "nothing" ? read : thrown;
    }
};

constexpr const char* kRefused = "GetPathFromRegistry() - RegQueryValueEx() failed, 80004005";

TEST_F(FolderValueTest, MayBeOfAnyTypeAndLackItsTerminator) {
    EXPECT_EQ("C:\\dlls\\", Path(Terminated("C:\\dlls\\")));
    EXPECT_EQ("C:\\dlls\\", Path("C:\\dlls\\"));
    EXPECT_EQ("C:\\dlls\\", Path("C:\\dlls\\", REG_BINARY));
    EXPECT_EQ("ABC", Path(std::string("ABC\0", 4), REG_DWORD));
    EXPECT_EQ("", Path(""));
    EXPECT_EQ("\xE9", Path("\xE9"));
}

TEST_F(FolderValueTest, HoldsAtMost1023Bytes) {
    EXPECT_EQ(std::string(1023, 'x'), Path(Terminated(std::string(1023, 'x'))));
    EXPECT_EQ(std::string(1023, 'x'), Path(std::string(1023, 'x'), REG_BINARY));
    EXPECT_EQ(kRefused, Path(std::string(1024, 'x'), REG_BINARY)) << "fills the room without its terminator";
    EXPECT_EQ(kRefused, Path(Terminated(std::string(1024, 'x'))));
}

TEST_F(FolderValueTest, MissingOnesAreReportedByEachLayer) {
    ASSERT_EQ(ERROR_SUCCESS, RegDeleteTreeA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Quillbeck\\QBNorvel\\Logging"));
    EXPECT_EQ("JobControlFactory::GetAccessor() got exception from GetPathTo....(), 80004005",
              Thrown([&] { m_factory->Initialize(); }));
    EXPECT_TRUE(ContainsInOrder(
        Lines(),
        {"4 GetPathFromRegistry() - RegOpenKeyEx() failed",
         "2 JobControlFactory::GetPathToTransportsXMLFromRegistry() got exception from GetPathFromRegistry(): GetPathFromRegistry() - RegOpenKeyEx() failed",
         "2 JobControlFactory::GetAccessor() got exception from GetPathTo....(): JobControlFactory::GetPathToTransportsXMLFromRegistry() got exception from GetPathFromRegistry()",
         "2 JobControlFactory::Initialize() error, JobControlFactory::GetAccessor() got exception from GetPathTo....()"}));

    SetFolderValue("pathtotransportsxml", Terminated("C:\\catalogue\\"));
    EXPECT_EQ("JobControlFactory::LoadTransportInfo() got exception from GetPathTo....(), 80004005",
              Thrown([&] { m_factory->Initialize(); }));
    EXPECT_TRUE(ContainsInOrder(
        Lines(),
        {"4 GetPathFromRegistry() - RegQueryValueEx() failed",
         "2 JobControlFactory::GetPathToBuildDllsFromRegistry() got exception from GetPathFromRegistry(): GetPathFromRegistry() - RegQueryValueEx() failed",
         "2 JobControlFactory::LoadTransportInfo() got exception from GetPathTo....(): JobControlFactory::GetPathToBuildDllsFromRegistry() got exception from GetPathFromRegistry()"}));
}

}  // namespace
}  // namespace wncom::test
