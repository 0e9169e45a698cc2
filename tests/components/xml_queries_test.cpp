// What the accessor answers to queries about a document that it loaded.
#include <chrono>
#include <iostream>

#include "tests/components/ComponentsFixture.h"

namespace wncom::test {
namespace {

constexpr LONG kFirstMatch = 4;
constexpr const char* kNoMatch = "0x00000001";
constexpr const char* kInvalid = "0x80070057";

// A catalogue of the shape that transport selection reads, with so many entries.
WideText Catalogue(int entries) {
    std::string text =
        "<transports>\n<networkmapping>HTTP</networkmapping>\n<path>C:\\t\\</path>\n<transportdlls><jobcontrol>\n";
    for (int i = 1; i <= entries; ++i) {
        const std::string number = std::to_string(i);
        text += "  <dll>\n    <type>T" + number + "</type>\n    <name>n" + number + ".dll</name>\n  </dll>\n";
    }
    return Wide(text + "</jobcontrol></transportdlls></transports>");
}

class XmlQueries : public ComponentsFixture {
protected:
    void LoadText(const char* document) { ASSERT_EQ(Hex(Load(m_accessor, Wide(document))), Hex(S_OK)); }
    std::string Asked(std::string_view query, LONG flag = 0) { return Ask(m_accessor, query, flag); }

    CPComPtr<IXMLSimpleAccessor> m_accessor = Create<IXMLSimpleAccessor>(kProgIdXMLSimpleAccessor);
};

TEST_F(XmlQueries, CatalogueIsReadByPositionUpToItsEnd) {
    ASSERT_EQ(Load(m_accessor, Catalogue(3)), S_OK);
    EXPECT_EQ(Asked("./networkmapping", kFirstMatch), "HTTP");
    EXPECT_EQ(Asked("./path", kFirstMatch), "C:\\t\\");
    EXPECT_EQ(Asked("./transportdlls/jobcontrol/dll[1]/type"), "T1");
    EXPECT_EQ(Asked("./transportdlls/jobcontrol/dll[3]/name"), "n3.dll");
    EXPECT_EQ(Asked("./transportdlls/jobcontrol/dll[4]/type"), kNoMatch);
    EXPECT_EQ(Asked("./transportdlls/jobcontrol/dll[2]/type"), "T2") << "positions may be asked for in any order";
}

TEST_F(XmlQueries, SeveralMatchesAreJoinedInDocumentOrder) {
    LoadText("<top><f><n>a</n></f><f><n/></f><f><n>c</n></f></top>");
    EXPECT_EQ(Asked("./f/n"), "a;;c");
    EXPECT_EQ(Asked("./f/n", kFirstMatch), "a");
    EXPECT_EQ(Asked("//n[last()] | ./f[1]/n"), "a;;c");
    ASSERT_EQ(m_accessor->SetDelimiter(Bstr(OLESTR(", ")).get()), S_OK);
    EXPECT_EQ(Asked("./f/n"), "a, , c");
    ASSERT_EQ(m_accessor->SetDelimiter(nullptr), S_OK);
    EXPECT_EQ(Asked("./f/n"), "ac");
}

TEST_F(XmlQueries, ElementTextIsAllTextBelowIt) {
    LoadText("<top><t> a<!-- x -->b<![CDATA[<c>&]]><d>e<f/>g</d>h&lt;&#x41; </t><empty/></top>");
    EXPECT_EQ(Asked("./t"), " ab<c>&egh<A ");
    EXPECT_EQ(Asked("string(./t)"), " ab<c>&egh<A ");
    EXPECT_EQ(Asked("./t/d/text()"), "e;g");
    EXPECT_EQ(Asked("./empty"), "");
    EXPECT_EQ(Asked("./t/d/f"), "");
}

TEST_F(XmlQueries, EveryFormOfXPathIsAnswered) {
    LoadText("<top a='1'><p:x xmlns:p='u' k='v'>1</p:x><x>2</x><x>3</x></top>");
    EXPECT_EQ(Asked("./x[. = '3']"), "3");
    EXPECT_EQ(Asked("./x[position() < 3]"), "2;3");
    EXPECT_EQ(Asked("/top/x[2]"), "3");
    EXPECT_EQ(Asked("@a"), "1");
    EXPECT_EQ(Asked("./p:x/@k"), "v") << "a prefix is part of the name as it is written";
    EXPECT_EQ(Asked("count(./x)"), "2");
    EXPECT_EQ(Asked("sum(./x) div 2"), "2.5");
    EXPECT_EQ(Asked("./x = '2'"), "true");
    EXPECT_EQ(Asked("concat('<', ./x[1], '>')"), "<2>");
    EXPECT_EQ(Asked("./y"), kNoMatch);
    EXPECT_EQ(Asked("./x[0]"), kNoMatch);
    EXPECT_EQ(Asked("./x[99999999999999999999]"), kNoMatch);
}

// The walk that remembers its place must agree with the general engine, which the outer parentheses bring in.
TEST_F(XmlQueries, StepsByPositionAgreeWithTheGeneralEngine) {
    LoadText("<top><b><d>1</d><e/><d>2</d></b><c/><b><d>3<d>4</d></d></b><b/></top>");
    for (const char* path : {"./b/d", "./b[1]/d", "./b[2]/d", "./b/d[1]", "./b/d[2]", "./b/d[3]", "./b[2]/d[1]/d",
                             "./b[1]/d[2]", "./b[1]/d[1]", "./c[1]", "./c/d", "./b[4]/d"}) {
        EXPECT_EQ(Asked(path), Asked("(" + std::string(path) + ")")) << path;
    }
}

TEST_F(XmlQueries, InvalidQueryIsRefused) {
    LoadText("<top><x>\xC3\xA9</x></top>");
    for (const char* query : {"./x[", "./x]", "][", "./x[foo()]", "./x/", "1 +", "$v", "./x//", "'"}) {
        EXPECT_EQ(Asked(query), kInvalid) << query;
    }
    EXPECT_EQ(Asked(std::string_view("./x\0y", 5)), kInvalid);
    EXPECT_EQ(Asked(std::string(100'000, '(') + "1"), kInvalid);
    EXPECT_EQ(Asked(""), kInvalid);
    EXPECT_EQ(Asked("./x", 1), kInvalid) << "a flag that means nothing";
    const OLECHAR half[] = {'.', '/', static_cast<OLECHAR>(0xD800), 0};
    Bstr text;
    EXPECT_EQ(Hex(m_accessor->GetXML(Bstr(half).get(), 0, text.put())), kInvalid);
    EXPECT_EQ(Hex(m_accessor->GetXML(nullptr, 0, text.put())), kInvalid);
    EXPECT_EQ(Hex(m_accessor->GetXML(Bstr(half).get(), 0, nullptr)), Hex(E_POINTER));
}

TEST_F(XmlQueries, QueryWithoutDocumentIsRefused) { EXPECT_EQ(Asked("./x"), Hex(E_UNEXPECTED)); }

TEST_F(XmlQueries, OutTextIsTakenAsEmptyWhateverItHolds) {
    LoadText("<top/>");
    BSTR text = reinterpret_cast<BSTR>(static_cast<std::uintptr_t>(0x10));
    EXPECT_EQ(m_accessor->GetXML(Bstr(OLESTR("./x")).get(), 0, &text), S_FALSE);
    EXPECT_EQ(text, nullptr);
}

TEST_F(XmlQueries, NextDocumentReplacesTheLastOne) {
    LoadText("<top><x>1</x><x>2</x></top>");
    EXPECT_EQ(Asked("./x[2]"), "2");
    LoadText("<top><x>3</x><x>4</x></top>");
    EXPECT_EQ(Asked("./x[2]"), "4");
    EXPECT_LT(Load(m_accessor, Wide("<top>")), 0);
    EXPECT_EQ(Asked("./x[2]"), Hex(E_UNEXPECTED));
}

TEST_F(XmlQueries, LongCatalogueIsReadToItsEnd) {
    constexpr int kEntries = 10'000;
    ASSERT_EQ(Load(m_accessor, Catalogue(kEntries)), S_OK);
    int read = 0;
    const auto start = std::chrono::steady_clock::now();
    for (;; ++read) {
        const std::string entry = "./transportdlls/jobcontrol/dll[" + std::to_string(read + 1) + "]";
        if (Asked(entry + "/type") == kNoMatch) break;
        ASSERT_EQ(Asked(entry + "/name"), "n" + std::to_string(read + 1) + ".dll");
    }
    EXPECT_EQ(read, kEntries);
    RecordProperty("milliseconds",
                   std::to_string((std::chrono::steady_clock::now() - start) / std::chrono::milliseconds(1)));
}

}  // namespace
}  // namespace wncom::test
