#include "tests/transport/TransportFixture.h"

#include <cstdio>

namespace wncom::test {

std::vector<std::string> TransportFixture::Lines() {
    std::vector<std::string> lines;
    for (const std::string& line : m_log->Lines("PlatformServices::")) {
        if (line.rfind("1 CI ", 0) != 0) lines.push_back(line);
    }
    m_log->Clear();
    return lines;
}

void TransportFixture::Initialised() {
    m_factory->Initialize();
    Lines();
}

std::string Thrown(const std::function<void()>& body) {
    try {
        body();
    } catch (const CPException& exception) {
        char status[16];
        std::snprintf(status, sizeof(status), ", %08x", static_cast<unsigned>(exception.GetCode()));
        return exception.what() + std::string(status);
    } catch (const std::bad_alloc&) {
        return "bad_alloc";
    } catch (int value) {
        return "int " + std::to_string(value);
    }
    return "nothing";
}

}  // namespace wncom::test
