#include "tests/bridge/BridgeFixture.h"

namespace wncom::test {

void BridgeFixture::SetUp() {
    SetUpFakeHome();
    m_log = std::make_unique<LogCapture>(3);
    m_bridge = std::make_unique<OrbStuff>();
}

void BridgeFixture::TearDown() {
    m_bridge.reset();
    m_log.reset();
    EXPECT_EQ(0, Script().LiveObjects());
}

std::vector<std::string> BridgeFixture::Lines() {
    std::vector<std::string> lines;
    // Every line bears the name of the component that started its log last, so the message itself must tell.
    for (const std::string& line : m_log->Lines()) {
        if (line.rfind("1 CI ", 0) == 0 || line.find("PlatformServices::") != std::string::npos) continue;
        if (line.find("JobControlFactory::") == std::string::npos) lines.push_back(line);
    }
    m_log->Clear();
    return lines;
}

void BridgeFixture::Connect() {
    m_bridge->SetServiceURI(kWideAddress);
    Script().ForgetCalls();
    Lines();
}

std::string Shown(const WCHAR* text) {
    if (!text) return "null";
    std::string shown;
    for (; *text; ++text) shown.push_back(static_cast<char>(*text));
    return shown;
}

}  // namespace wncom::test
