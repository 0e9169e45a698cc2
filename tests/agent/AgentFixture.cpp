#include "tests/agent/AgentFixture.h"

#include <filesystem>
#include <regex>
#include <sstream>

namespace wncom::test {

OutText::~OutText() {
    if (m_place != m_own.get()) SysFreeString(m_place);
}

std::string OutText::Shown() const {
    if (m_place == m_own.get()) return "(untouched)";
    return m_place ? Narrow(m_place) : "(null)";
}

AgentFixture::AgentFixture() : m_module(ProgramFolder() + "/wnCOM.dll") {
    EXPECT_EQ(Hex(m_module.Call("DllRegisterServer")), Hex(S_OK));
    EXPECT_EQ(Hex(RegisterFakeComponents(ProgramFolder())), Hex(S_OK));
    SetRegistryValue(kLoggingKey, "pathtotransportsxml", HomePath() + "/");
    SetRegistryValue(kLoggingKey, "builddllpath", ProgramFolder() + "/");
    SetRegistryValue(kLoggingKey, nullptr, "file," + m_logPath + ",5");
    Prepare();
}

AgentFixture::~AgentFixture() {
    EXPECT_EQ(Script().LiveObjects(), 0) << "objects of the fakes left behind";
    EXPECT_EQ(Hex(CanUnload()), Hex(S_OK)) << "the module is still locked";
}

void AgentFixture::Prepare() {
    Script().Reset();
    Script().SetCatalogue("http", {{"http", "FakeTransport.dll"}});
    Script().SetServices({{kAddress, "network"}});
    Script().Answer("FakeTransport.StartSession", "session-1");
    Script().Answer("FakeTransport.SubmitJob", kResponse);
    ClearLog();
}

std::vector<std::string> AgentFixture::Log() const {
    static const std::regex kPrefix("^[^\\]]*/([0-9])\\] [A-Za-z]+::");
    std::vector<std::string> lines;
    std::istringstream text(ReadWholeFile(m_logPath).substr(m_logStart));
    for (std::string line; std::getline(text, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        line = std::regex_replace(line, kPrefix, "$1 ");
        if (line.empty() || line[0] == '5' || line.starts_with("1 CI ")) continue;
        lines.push_back(line);
    }
    return lines;
}

// The file stays: the module may hold it open.
void AgentFixture::ClearLog() {
    m_logStart =
        std::filesystem::exists(m_logPath) ? static_cast<std::size_t>(std::filesystem::file_size(m_logPath)) : 0;
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
