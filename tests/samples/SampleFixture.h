// A home in which every service is reached by the sample transport library.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "tests/support/Com.h"
#include "tests/support/TestHome.h"
#include "wncom/Descriptions.h"
#include "wncom/wnCOM.h"

namespace wncom::test {

inline constexpr const char* kSampleAddress = "sample://press";

// Nothing is logged until SetLogging. A test that leaves an object, a module lock or the transport library behind
// fails.
class SampleFixture : public testing::Test {
protected:
    SampleFixture();
    ~SampleFixture() override;

    static void SetLogging(const std::string& configuration);
    static CPComPtr<IServiceDesc> Service(const std::string& identifier, const std::string& address = kSampleAddress);
    static CPComPtr<IWendrel> Agent(const CPComPtr<IServiceDesc>& service);
    static CPComPtr<IWendrel> Agent() { return Agent(Service("device-7")); }

private:
    LoadedModule m_agentModule;
    LoadedModule m_components;
    Apartment m_apartment;
};

}  // namespace wncom::test
