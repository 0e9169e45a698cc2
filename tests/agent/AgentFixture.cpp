#include "tests/agent/AgentFixture.h"

#include <filesystem>
#include <string_view>
#include <system_error>

#include "tests/fakes/Happened.h"

namespace wncom::test {

OutText::~OutText() {
    if (m_place != m_own.get()) SysFreeString(m_place);
}

std::string OutText::Shown() const {
    if (m_place == m_own.get()) return "(untouched)";
    return m_place ? ToUtf8(m_place) : "(null)";
}

AgentFixture::AgentFixture() : m_module(ProgramFolder() + "/wnCOM.dll") {
    EXPECT_EQ(Hex(m_module.Call("DllRegisterServer")), Hex(S_OK));
    EXPECT_EQ(Hex(RegisterFakeComponents(ProgramFolder())), Hex(S_OK));
    SetRegistryValue(kLoggingKey, "pathtotransportsxml", HomePath() + "/");
    SetRegistryValue(kLoggingKey, "builddllpath", ProgramFolder() + "/");
    SetLogLevel(5);
    Prepare();
}

AgentFixture::~AgentFixture() {
    EXPECT_EQ(Script().LiveObjects(), 0) << "objects of the fakes left behind";
    EXPECT_EQ(Hex(CanUnload()), Hex(S_OK)) << "the module is still locked";
}

void AgentFixture::SetLogLevel(int level) const {
    SetRegistryValue(kLoggingKey, nullptr, "file," + m_logPath + "," + std::to_string(level));
}

void AgentFixture::Prepare() {
    Script().Reset();
    Script().SetCatalogue("http", {{"http", "FakeTransport.dll"}});
    Script().SetServices({{kAddress, "network"}});
    Script().Answer("FakeTransport.StartSession", "session-1");
    Script().Answer("FakeTransport.SubmitJob", kResponse);
    // The file stays: the module may hold it open.
    std::error_code absent;
    const auto size = std::filesystem::file_size(m_logPath, absent);
    m_logStart = absent ? 0 : static_cast<std::size_t>(size);
}

std::string AgentFixture::Happened(bool whole) const {
    const std::string log = ReadWholeFile(m_logPath).substr(m_logStart);
    if (!whole) return test::Happened(log);
    // The buffer's lines tell sizes of paths and addresses of memory.
    return test::Happened(log, [](std::string_view line) { return HoldsOneOf(line, {"CPWStringBuffer::"}); });
}

CPComPtr<IServiceDesc> AgentFixture::Service(const char* id, const char* address) {
    const auto service = Create<IServiceDesc>(kProgIdServiceDesc);
    EXPECT_EQ(Hex(service->SetID(Text(id).get())), Hex(S_OK));
    EXPECT_EQ(Hex(service->SetAddress(Text(address).get())), Hex(S_OK));
    return service;
}

CPComPtr<IWendrel> AgentFixture::Agent() {
    const auto parent = Create<IInternalWendrelParent>(kProgIdWendrelParent);
    CPComPtr<IWendrel> agent;
    EXPECT_EQ(Hex(parent->CreateWendrel(Service().get(), agent.put())), Hex(S_OK));
    return agent;
}

}  // namespace wncom::test
