// The longest path of a library; Windows has a limit of its own long before.
#include "tests/transport/TransportFixture.h"

namespace wncom::test {
namespace {

TEST_F(TransportFixture, RefusesAPathOf1024BytesAsAFailedLoad) {
    const std::string programs = ProgramFolder() + "/";
    // Doubled separators name the same folder.
    SetFolderValue("builddllpath", Terminated(programs + std::string(1006 - programs.size(), '/')));
    Script().SetCatalogue("net", {{"fits", "FakeTransport.dll"}, {"long", "FakeTransportB.dll"}});
    m_factory->Initialize();
    EXPECT_EQ(Use("fits"), "nothing");
    EXPECT_EQ(Use("long"), "JobControlFactory::Create(), Create() failed, 80004005");
    EXPECT_NE(Happened().find("{name too long}"), std::string::npos);
}

}  // namespace
}  // namespace wncom::test
