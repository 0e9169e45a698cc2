// Subscription documents, read through the accessor that is shipped and through one that fails on request.
#include "common/EventXMLProcessor.h"

#include <gtest/gtest.h>

#include <new>

#include "tests/fakes/FakeScript.h"
#include "tests/support/Com.h"
#include "tests/support/Host.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestHome.h"

namespace {
bool g_noMemory = false;
}  // namespace

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return g_noMemory ? nullptr : ::operator new[](size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

namespace wncom::test {
namespace {

constexpr char kNoPairs[] = "1 EventXMLProcessor::getFilterContent(), number of names and values don't match!";

using Texts = std::vector<std::string>;
const Texts kFailed = {"failed"};

class EventXMLProcessorTest : public testing::Test {
public:
    Texts SubContent(const char* document = "<s/>") {
        char** content = m_processor.getSubContent(Text(document).get());
        if (!content) return kFailed;
        Texts texts;
        for (int i = 0; i < 3; ++i) texts.push_back(content[i] ? content[i] : "(null)");
        return texts;
    }
    Texts FilterContent(const char* document = "<s/>") {
        char** content = m_processor.getFilterContent(Text(document).get());
        if (!content) return kFailed;
        Texts texts;
        for (; *content; ++content) texts.emplace_back(*content);
        return texts;
    }
    Texts Log() const {
        Texts lines;
        for (const std::string& line : m_log.Lines()) {
            if (line.find("EventXMLProcessor") != std::string::npos) lines.push_back(line);
        }
        return lines;
    }

    Apartment m_apartment;
    LogCapture m_log{1};
    EventXMLProcessor m_processor;
};

class SubscriptionDocument : public EventXMLProcessorTest {
protected:
    SubscriptionDocument() { EXPECT_EQ(Hex(m_components.Call("DllRegisterServer")), Hex(S_OK)); }

    LoadedModule m_components{ProgramFolder() + "/wnComponents.dll"};
};

TEST_F(SubscriptionDocument, GivesItsThreeTextsAndItsFilters) {
    EXPECT_EQ(SubContent("<s><EventName>J&#228;m</EventName><ReliabilityOption>Best</ReliabilityOption>"
                         "<ClientCookie>7</ClientCookie></s>"),
              Texts({"J\xE4m", "Best", "7"}));
    EXPECT_EQ(SubContent("<s><EventName/><ClientCookie>&#8364;</ClientCookie></s>"),
              Texts({"(null)", "(null)", "(null)"}))
        << "nothing for an empty text and for a character above 255";
    std::string document = "<s>";
    Texts filters;
    for (int i = 0; i < 2000; ++i) {
        const std::string number = std::to_string(i);
        document += "<FilterOn><Name>n" + number + "</Name><Value>v" + number + "</Value></FilterOn>";
        filters.insert(filters.end(), {"n" + number, "v" + number});
    }
    EXPECT_EQ(FilterContent((document + "</s>").c_str()), filters);
    EXPECT_EQ(Log(), Texts());
}

class ScriptedAccessor : public EventXMLProcessorTest {
protected:
    ScriptedAccessor() {
        EXPECT_EQ(Hex(RegisterFakeComponents(ProgramFolder())), Hex(S_OK));
        Begin();
    }
    ~ScriptedAccessor() override { EXPECT_EQ(Script().LiveObjects(), 0); }

    void Begin() {
        Script().Reset();
        Script().AnswerQuery("./EventName", "Jam");
        Script().AnswerQuery("./ReliabilityOption", "Best");
        Script().AnswerQuery("./ClientCookie", "7");
        Script().AnswerQuery("./FilterOn/Name", "A;B");
        Script().AnswerQuery("./FilterOn/Value", "1;2");
        m_log.Clear();
    }
};

TEST_F(ScriptedAccessor, IsAskedInThisOrder) {
    SubContent("<doc/>");
    FilterContent("<doc/>");
    EXPECT_EQ(
        Script().Calls(),
        Texts({"XMLSimpleAccessor.create()", "XMLSimpleAccessor.LoadXML(<doc/>)", "XMLSimpleAccessor.SetDelimiter(;)",
               "XMLSimpleAccessor.GetXML(./EventName, 0)", "XMLSimpleAccessor.GetXML(./ReliabilityOption, 0)",
               "XMLSimpleAccessor.GetXML(./ClientCookie, 0)", "XMLSimpleAccessor.create()",
               "XMLSimpleAccessor.LoadXML(<doc/>)", "XMLSimpleAccessor.SetDelimiter(;)",
               "XMLSimpleAccessor.GetXML(./FilterOn/Name, 0)", "XMLSimpleAccessor.GetXML(./FilterOn/Value, 0)"}));
}

// Every call fails in every way; the text answers are the same again afterwards.
TEST_F(ScriptedAccessor, FailsWithTheLinesOfItsStepAndOfAllThatFollow) {
    struct Operation {
        std::string name;
        Texts (ScriptedAccessor::*read)(const char*);
        Texts whole;
        std::vector<Texts> lines;  // of a failure at the n-th call
    };
    const Operation operations[] = {{"getSubContent",
                                     &ScriptedAccessor::SubContent,
                                     {"Jam", "Best", "7"},
                                     {{"load XML"},
                                      {"load XML"},
                                      {"set delimiter"},
                                      {"get event name", "get reliability options", "get cookie"},
                                      {"get reliability options", "get cookie"},
                                      {"get cookie"}}},
                                    {"getFilterContent",
                                     &ScriptedAccessor::FilterContent,
                                     {"A", "1", "B", "2"},
                                     {{"load XML"}, {"load XML"}, {"set delimiter"}, {"get name"}, {"get values"}}}};
    for (const Operation& operation : operations) {
        for (const Fault fault : {Fault::Status, Fault::CommonException, Fault::OutOfMemory, Fault::Integer}) {
            for (unsigned call = 1; call <= operation.lines.size(); ++call) {
                SCOPED_TRACE(operation.name + ", call " + std::to_string(call));
                Begin();
                Script().FailAtCall(call, {fault, E_ABORT});
                EXPECT_EQ((this->*operation.read)("<s/>"), kFailed);
                Texts lines;
                for (const std::string& what : operation.lines[call - 1]) {
                    lines.push_back("1 EventXMLProcessor::" + operation.name + "(), unable to " + what);
                }
                EXPECT_EQ(Log(), lines);
                EXPECT_EQ(Script().CallCount(), call) << "nothing more is asked";
                EXPECT_EQ((this->*operation.read)("<s/>"), operation.whole);
            }
        }
    }
    Begin();
    Script().FailIn("XMLSimpleAccessor.create", {Fault::Null});
    EXPECT_EQ(SubContent(), kFailed) << "a creation that succeeds with nothing";
}

TEST_F(ScriptedAccessor, LeavesATextOutThatItDoesNotFind) {
    Script().AnswerFlag("XMLSimpleAccessor.text without match", true);
    Script().ForgetQuery("./ClientCookie");
    Script().FailIn("XMLSimpleAccessor.GetXML", {Fault::Null}, 2);
    const long texts = LiveTexts();
    EXPECT_EQ(SubContent(), Texts({"Jam", "(null)", "(null)"}));
    EXPECT_EQ(LiveTexts(), texts);
    EXPECT_EQ(Log(), Texts());
}

TEST_F(ScriptedAccessor, PairsNamesAndValuesAndRefusesWhatDoesNotPair) {
    const struct {
        const char *names, *values;
        Texts filters;
    } cases[] = {{"A", "1", {"A", "1"}},  {";A;;B;", "1;;;2;;", {"A", "1", "B", "2"}},
                 {";;;", ";;;", kFailed}, {"A;B", "1", kFailed},
                 {"A", "1;2", kFailed},   {"A", "\u20AC", kFailed},
                 {"A", nullptr, kFailed}, {nullptr, "1", kFailed}};
    Script().AnswerFlag("XMLSimpleAccessor.text without match", true);
    for (const auto& given : cases) {
        SCOPED_TRACE(given.names ? given.names : "no names");
        m_log.Clear();
        given.names ? Script().AnswerQuery("./FilterOn/Name", given.names) : Script().ForgetQuery("./FilterOn/Name");
        given.values ? Script().AnswerQuery("./FilterOn/Value", given.values)
                     : Script().ForgetQuery("./FilterOn/Value");
        EXPECT_EQ(FilterContent(), given.filters);
        const bool told = Log() == Texts({kNoPairs});
        EXPECT_EQ(told, given.filters == kFailed);
    }
}

TEST_F(ScriptedAccessor, LeavesTheOtherOperationsResult) {
    char** content = m_processor.getSubContent(Text("<s/>").get());
    ASSERT_NE(content, nullptr);
    Script().FailIn("XMLSimpleAccessor.LoadXML", {Fault::Status, E_FAIL});
    EXPECT_EQ(FilterContent(), kFailed);
    EXPECT_STREQ(content[0], "Jam");
}

TEST_F(ScriptedAccessor, IsNotAskedWithoutMemoryForTheAnswers) {
    g_noMemory = true;
    EXPECT_EQ(SubContent(), kFailed);
    EXPECT_EQ(FilterContent(), kFailed);
    g_noMemory = false;
    EXPECT_EQ(Log(), Texts({"1 EventXMLProcessor::getSubContent(), unable to allocate strings",
                            "1 EventXMLProcessor::getSubContent(), unable to get event name",
                            "1 EventXMLProcessor::getSubContent(), unable to get reliability options",
                            "1 EventXMLProcessor::getSubContent(), unable to get cookie"}));
}

}  // namespace
}  // namespace wncom::test
