// Subscription documents, read through the accessor that is shipped and through one that fails on request.
#include "common/EventXMLProcessor.h"

#include <gmock/gmock.h>

#include <new>

#include "tests/fakes/FakeScript.h"
#include "tests/support/Com.h"
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

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kNoPairs[] = "1 EventXMLProcessor::getFilterContent(), number of names and values don't match!";

using Texts = std::vector<std::string>;

class EventXMLProcessorTest : public testing::Test {
protected:
    Texts SubContent(const char* document = "<s/>") {
        char** content = m_processor.getSubContent(Text(document).get());
        if (!content) return {"failed"};
        Texts texts;
        for (int i = 0; i < 3; ++i) texts.push_back(content[i] ? content[i] : "(null)");
        return texts;
    }
    Texts FilterContent(const char* document = "<s/>") {
        char** content = m_processor.getFilterContent(Text(document).get());
        if (!content) return {"failed"};
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

TEST_F(SubscriptionDocument, GivesItsThreeTexts) {
    EXPECT_THAT(SubContent("<s><EventName>Jam</EventName><ReliabilityOption>Best</ReliabilityOption>"
                           "<ClientCookie>7</ClientCookie></s>"),
                ElementsAre("Jam", "Best", "7"));
    EXPECT_THAT(SubContent("<s><EventName>Jam</EventName><ClientCookie/></s>"),
                ElementsAre("Jam", "(null)", "(null)"));
    EXPECT_THAT(SubContent("<s><EventName>J&#228;m</EventName><ClientCookie>&#8364;</ClientCookie></s>"),
                ElementsAre("J\xE4m", "(null)", "(null)"))
        << "bytes below 256, and nothing for what is above";
}

TEST_F(SubscriptionDocument, GivesItsFiltersInPairs) {
    EXPECT_THAT(FilterContent("<s><FilterOn><Name>A</Name><Value>1</Value></FilterOn></s>"), ElementsAre("A", "1"));
    EXPECT_THAT(FilterContent("<s><FilterOn><Name>A</Name><Value>1</Value></FilterOn>"
                              "<FilterOn><Name>B</Name><Value>2</Value></FilterOn></s>"),
                ElementsAre("A", "1", "B", "2"));
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(SubscriptionDocument, WithoutPairsFails) {
    for (const char* document : {"<s/>", "<s><FilterOn/></s>", "<s><FilterOn><Value>1</Value></FilterOn></s>",
                                 "<s><FilterOn><Name>A</Name></FilterOn></s>",
                                 "<s><FilterOn><Name>A</Name><Name>B</Name><Value>1</Value></FilterOn></s>",
                                 "<s><FilterOn><Name>A</Name><Value>&#8364;</Value></FilterOn></s>"}) {
        m_log.Clear();
        EXPECT_THAT(FilterContent(document), ElementsAre("failed")) << document;
        EXPECT_THAT(Log(), ElementsAre(kNoPairs)) << document;
    }
}

TEST_F(SubscriptionDocument, ThatIsNoneFails) {
    for (const char* document : {"", "<s>", "no such file"}) {
        m_log.Clear();
        EXPECT_THAT(SubContent(document), ElementsAre("failed"));
        EXPECT_THAT(FilterContent(document), ElementsAre("failed"));
        EXPECT_THAT(Log(), ElementsAre("1 EventXMLProcessor::getSubContent(), unable to load XML",
                                       "1 EventXMLProcessor::getFilterContent(), unable to load XML"));
    }
    EXPECT_EQ(m_processor.getSubContent(nullptr), nullptr);
    EXPECT_EQ(m_processor.getFilterContent(nullptr), nullptr);
}

TEST_F(SubscriptionDocument, MayBeLong) {
    std::string document = "<s>";
    for (int i = 0; i < 2000; ++i) document += "<FilterOn><Name>n</Name><Value>v</Value></FilterOn>";
    EXPECT_EQ(FilterContent((document + "</s>").c_str()).size(), 4000U);
}

class AccessorFailure : public EventXMLProcessorTest {
protected:
    AccessorFailure() {
        EXPECT_EQ(Hex(RegisterFakeComponents(ProgramFolder())), Hex(S_OK));
        Begin();
    }
    ~AccessorFailure() override { EXPECT_EQ(Script().LiveObjects(), 0); }

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

TEST_F(AccessorFailure, NoneMeansTheseCalls) {
    SubContent("<doc/>");
    EXPECT_THAT(Script().Calls(),
                ElementsAre("XMLSimpleAccessor.create()", "XMLSimpleAccessor.LoadXML(<doc/>)",
                            "XMLSimpleAccessor.SetDelimiter(;)", "XMLSimpleAccessor.GetXML(./EventName, 0)",
                            "XMLSimpleAccessor.GetXML(./ReliabilityOption, 0)",
                            "XMLSimpleAccessor.GetXML(./ClientCookie, 0)"));
    Script().ForgetCalls();
    FilterContent("<doc/>");
    EXPECT_THAT(Script().Calls(),
                ElementsAre("XMLSimpleAccessor.create()", "XMLSimpleAccessor.LoadXML(<doc/>)",
                            "XMLSimpleAccessor.SetDelimiter(;)", "XMLSimpleAccessor.GetXML(./FilterOn/Name, 0)",
                            "XMLSimpleAccessor.GetXML(./FilterOn/Value, 0)"));
}

TEST_F(AccessorFailure, IsToldWithAllThatFollows) {
    const Texts kLoad = {"1 EventXMLProcessor::getSubContent(), unable to load XML"};
    const Texts kDelimiter = {"1 EventXMLProcessor::getSubContent(), unable to set delimiter"};
    const Texts kQueries = {"1 EventXMLProcessor::getSubContent(), unable to get event name",
                            "1 EventXMLProcessor::getSubContent(), unable to get reliability options",
                            "1 EventXMLProcessor::getSubContent(), unable to get cookie"};
    const Texts kFromCall[] = {kLoad, kLoad, kDelimiter, kQueries, {kQueries[1], kQueries[2]}, {kQueries[2]}};
    for (const Fault fault : {Fault::Status, Fault::CommonException, Fault::OutOfMemory, Fault::Integer}) {
        for (unsigned call = 1; call <= 6; ++call) {
            Begin();
            Script().FailAtCall(call, {fault, E_ABORT});
            EXPECT_THAT(SubContent(), ElementsAre("failed"));
            EXPECT_EQ(Log(), kFromCall[call - 1]) << "call " << call;
            EXPECT_EQ(Script().CallCount(), call) << "nothing more is asked";
            EXPECT_THAT(SubContent(), ElementsAre("Jam", "Best", "7"));
        }
    }
    Begin();
    Script().FailIn("XMLSimpleAccessor.create", {Fault::Null});
    EXPECT_THAT(SubContent(), ElementsAre("failed")) << "a creation that succeeds with nothing";
    EXPECT_EQ(Log(), kLoad);
}

TEST_F(AccessorFailure, EndsTheFilters) {
    const Texts kFromCall[] = {{"1 EventXMLProcessor::getFilterContent(), unable to load XML"},
                               {"1 EventXMLProcessor::getFilterContent(), unable to load XML"},
                               {"1 EventXMLProcessor::getFilterContent(), unable to set delimiter"},
                               {"1 EventXMLProcessor::getFilterContent(), unable to get name"},
                               {"1 EventXMLProcessor::getFilterContent(), unable to get values"}};
    for (const Fault fault : {Fault::Status, Fault::CommonException, Fault::OutOfMemory, Fault::Integer}) {
        for (unsigned call = 1; call <= 5; ++call) {
            Begin();
            Script().FailAtCall(call, {fault, E_ABORT});
            EXPECT_THAT(FilterContent(), ElementsAre("failed"));
            EXPECT_EQ(Log(), kFromCall[call - 1]) << "call " << call;
            EXPECT_THAT(FilterContent(), ElementsAre("A", "1", "B", "2"));
        }
    }
}

TEST_F(AccessorFailure, IsNotTheLackOfAnAnswer) {
    Script().ForgetQuery("./ClientCookie");
    Script().FailIn("XMLSimpleAccessor.GetXML", {Fault::Null}, 2);
    EXPECT_THAT(SubContent(), ElementsAre("Jam", "(null)", "(null)"));
    EXPECT_THAT(Log(), IsEmpty());
    Script().ForgetQuery("./FilterOn/Value");
    EXPECT_THAT(FilterContent(), ElementsAre("failed"));
    EXPECT_THAT(Log(), ElementsAre(kNoPairs));
}

TEST_F(AccessorFailure, IsNotAnEmptyPiece) {
    Script().AnswerQuery("./FilterOn/Name", ";A;;B;");
    Script().AnswerQuery("./FilterOn/Value", "1;;;2;;");
    EXPECT_THAT(FilterContent(), ElementsAre("A", "1", "B", "2"));
    Script().AnswerQuery("./FilterOn/Name", ";;;");
    Script().AnswerQuery("./FilterOn/Value", ";;;");
    EXPECT_THAT(FilterContent(), ElementsAre("failed"));
}

TEST_F(AccessorFailure, LeavesTheOtherOperationsResult) {
    char** content = m_processor.getSubContent(Text("<s/>").get());
    ASSERT_NE(content, nullptr);
    Script().FailIn("XMLSimpleAccessor.LoadXML", {Fault::Status, E_FAIL});
    EXPECT_THAT(FilterContent(), ElementsAre("failed"));
    EXPECT_STREQ(content[0], "Jam");
}

TEST_F(AccessorFailure, OfMemoryIsTold) {
    g_noMemory = true;
    EXPECT_THAT(SubContent(), ElementsAre("failed"));
    EXPECT_THAT(FilterContent(), ElementsAre("failed"));
    g_noMemory = false;
    EXPECT_THAT(Log(), ElementsAre("1 EventXMLProcessor::getSubContent(), unable to allocate strings",
                                   "1 EventXMLProcessor::getSubContent(), unable to get event name",
                                   "1 EventXMLProcessor::getSubContent(), unable to get reliability options",
                                   "1 EventXMLProcessor::getSubContent(), unable to get cookie"));
}

}  // namespace
}  // namespace wncom::test
