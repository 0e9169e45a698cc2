// The device service and a client of it.
#pragma once

#include <gtest/gtest.h>
#include <httplib.h>

#include <string>

#include "tests/support/Contains.h"
#include "tests/support/DeviceProcess.h"
#include "tests/support/ElementText.h"
#include "tests/support/TestHome.h"

namespace wncom::test {

class WndeviceTest : public testing::Test {
protected:
    void SetUp() override {
        client.set_keep_alive(true);
        session = Session();
    }

    std::string Session() { return client.Post("/sessions")->body; }
    // Sends a document in the fixture's session, or in another.
    httplib::Result Post(const std::string& path, const std::string& document, httplib::Headers headers = {}) {
        if (headers.count("Session-Id") == 0) headers.emplace("Session-Id", session);
        return client.Post(path, headers, document, "application/xml");
    }
    // Expects a refusal with a sentence.
    void ExpectRefusal(const httplib::Result& result, int status, const std::string& sentence) {
        ASSERT_TRUE(result) << sentence;
        EXPECT_EQ(result->status, status) << sentence;
        EXPECT_TRUE(Contains(result->body, sentence));
    }
    // A new job; its path at the service.
    std::string Job() { return "/jobs/" + ElementText(Post("/jobs", "<a/>")->body, "JobId"); }

    static std::string SetValue(const std::string& path, const std::string& value) {
        return "<set><path>" + path + "</path><value>" + value + "</value></set>";
    }
    httplib::Result Set(const std::string& sets, httplib::Headers headers = {}) {
        return Post("/device-data/write",
                    "<setData><prefixes>d=urn:wncom:device-data</prefixes>" + sets + "</setData>",
                    std::move(headers));
    }
    httplib::Result Read(const std::string& path, const std::string& prefixes = "d=urn:wncom:device-data") {
        return Post("/device-data/read",
                    "<dataRequest><path>" + path + "</path><prefixes>" + prefixes + "</prefixes></dataRequest>");
    }
    std::string Value(const std::string& path) { return ElementText(Read(path)->body, "value"); }

    DeviceProcess device;
    httplib::Client client{device.Address()};
    std::string session;
};

}  // namespace wncom::test
