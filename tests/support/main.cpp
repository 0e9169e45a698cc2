// Every test program: a fresh home before the first test, and a failed test for every text or module that a test
// leaves behind.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "tests/support/Host.h"
#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

// Counts are taken around each test: what a test makes it must free.
class LeakListener : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo&) override { m_texts = LiveTexts(); }
    void OnTestEnd(const testing::TestInfo& test) override {
        if (test.result()->Failed() || test.result()->Skipped()) return;
        const long left = LiveTexts() - m_texts;
        if (left != 0) ADD_FAILURE() << left << " BSTR(s) left behind";
    }
    long m_texts = 0;
};

}  // namespace

const std::string& HomePath() {
    static const std::string path = MakeHome();
    return path;
}

}  // namespace wncom::test

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const std::string& home = wncom::test::HomePath();
    testing::UnitTest::GetInstance()->listeners().Append(new wncom::test::LeakListener);
    const int result = RUN_ALL_TESTS();
    wncom::test::RemoveHome(home, std::getenv("WNCOM_KEEP_HOME") != nullptr);
    return result;
}
