// A home in which wn can submit: the modules registered and the directories set, all by wn itself.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/support/TestHome.h"
#include "tests/tools/WnProcess.h"

namespace wncom::test {

inline constexpr const char* kTicketText =
    "<intentTicket><jobName>Gr\xC3\xB6\xC3\x9F"
    "e</jobName></intentTicket>";

class WnTest : public testing::Test {
protected:
    // A path in the test's home.
    static std::string InHome(const std::string& name) { return HomePath() + "/" + name; }

    // A file of the samples that ship.
    static std::string Sample(const std::string& name) { return WNCOM_SAMPLES "/" + name; }

    static std::string NewTicket(const std::string& name = "ticket.xml") {
        WriteWholeFile(InHome(name), kTicketText);
        return InHome(name);
    }

    static void Install() {
        WriteWholeFile(
            InHome("catalogue/Transports.xml"),
            "<transports><networkmapping>http</networkmapping><path>.</path><transportdlls><jobcontrol><dll>"
            "<type>http</type><name>wnHttpTransport.dll</name></dll></jobcontrol></transportdlls>"
            "</transports>");
        ExpectDone(RunWn({"register", ProgramFolder() + "/wnCOM.dll", ProgramFolder() + "/wnComponents.dll"}));
        ExpectDone(RunWn({"directories", "--catalogue", InHome("catalogue"), "--libraries", ProgramFolder()}));
    }

    static void ExpectDone(const WnOutcome& outcome) {
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.error, "");
    }
    // One line that says what is wrong.
    static void ExpectRefusal(const WnOutcome& outcome, int status, const std::string& text) {
        EXPECT_EQ(outcome.status, status);
        EXPECT_THAT(outcome.error, testing::StartsWith("wn: "));
        EXPECT_THAT(outcome.error, testing::HasSubstr(text));
        EXPECT_EQ(std::count(outcome.error.begin(), outcome.error.end(), '\n'), 1) << outcome.error;
    }
};

}  // namespace wncom::test
