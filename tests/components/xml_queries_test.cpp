// What the accessor answers to queries about a document that it loaded.
#include "tests/components/ComponentsFixture.h"

namespace wncom::test {
namespace {

const std::string kNoMatch = Hex(S_FALSE);
const std::string kInvalid = Hex(E_INVALIDARG);

class XmlQueries : public ComponentsFixture {
protected:
    void LoadText(const std::string& document) { ASSERT_EQ(Hex(Load(m_accessor, Wide(document))), Hex(S_OK)); }
    std::string Asked(std::string_view query, LONG flag = 0) { return Ask(m_accessor, query, flag); }
    struct Query {
        std::string_view query;
        std::string answer;
    };
    void ExpectAnswers(const std::vector<Query>& queries) {
        for (const Query& asked : queries) EXPECT_EQ(Asked(asked.query), asked.answer) << asked.query;
    }

    CPComPtr<IXMLSimpleAccessor> m_accessor = Create<IXMLSimpleAccessor>(kProgIdXMLSimpleAccessor);
};

TEST_F(XmlQueries, SeveralMatchesAreJoinedInDocumentOrder) {
    LoadText("<top><f><n>a</n></f><f><n/></f><f><n>c</n></f></top>");
    EXPECT_EQ(Asked("./f/n"), "a;;c");
    EXPECT_EQ(Asked("./f/n", 4), "a;;c") << "also for who expects one";
    EXPECT_EQ(Asked("./f[2]/n", 4), "");
    EXPECT_EQ(Asked("//n[last()] | ./f[1]/n"), "a;;c");
    ASSERT_EQ(m_accessor->SetDelimiter(Text(", ").get()), S_OK);
    EXPECT_EQ(Asked("./f/n"), "a, , c");
    ASSERT_EQ(m_accessor->SetDelimiter(nullptr), S_OK);
    EXPECT_EQ(Asked("./f/n"), "ac");
}

TEST_F(XmlQueries, ElementTextIsAllTextBelowIt) {
    LoadText("<top><t> a<!-- x -->b<![CDATA[<c>&]]><d>e<f/>g</d>h&lt;&#x41; </t><empty/></top>");
    ExpectAnswers({{"./t", " ab<c>&egh<A "},
                   {"string(./t)", " ab<c>&egh<A "},
                   {"./t/d/text()", "e;g"},
                   {"./empty", ""},
                   {"./t/d/f", ""}});
}

TEST_F(XmlQueries, EveryFormOfXPathIsAnswered) {
    LoadText("<top a='1'><p:x xmlns:p='u' k='v'>1</p:x><x>2</x><x>3</x></top>");
    ExpectAnswers({{"./x[. = '3']", "3"},
                   {"./x[position() < 3]", "2;3"},
                   {"/top/x[2]", "3"},
                   {"@a", "1"},
                   {"./p:x/@k", "v"},  // a prefix is part of the name as it is written
                   {"count(./x)", "2"},
                   {"sum(./x) div 2", "2.5"},
                   {"./x = '2'", "true"},
                   {"concat('<', ./x[1], '>')", "<2>"},
                   {"./y", kNoMatch},
                   {"./x[0]", kNoMatch},
                   {"./x[99999999999999999999]", kNoMatch}});
}

// The walk that remembers its places must agree with the general engine, which the outer parentheses bring in.
TEST_F(XmlQueries, StepsByPositionAgreeWithTheGeneralEngine) {
    LoadText("<top><b><d>1</d><e/><d>2</d></b><c/><b><d>3<d>4</d></d></b><b/></top>");
    for (const char* path :
         {"./b/d", "./b[1]/d", "./b[2]/d", "./b/d[1]", "./b/d[2]", "./b/d[3]", "./b/d[2]", "./b/d[1]",
          "./b[2]/d[1]/d", "./b[1]/d[2]", "./b[1]/d[1]", "./c[1]", "./c/d", "./b[4]/d"}) {
        EXPECT_EQ(Asked(path), Asked("(" + std::string(path) + ")")) << path;
    }
}

TEST_F(XmlQueries, InvalidQueryIsRefused) {
    EXPECT_EQ(Asked("./x"), Hex(E_UNEXPECTED)) << "nothing is loaded";
    LoadText("<top><x>\xC3\xA9</x></top>");
    for (const char* query : {"./x[", "./x]", "][", "./x[foo()]", "./x/", "1 +", "$v", "./x//", "'", ""}) {
        EXPECT_EQ(Asked(query), kInvalid) << query;
    }
    EXPECT_EQ(Asked(std::string_view("./x\0y", 5)), kInvalid);
    EXPECT_EQ(Asked(std::string(100'000, '(') + "1"), kInvalid);
    EXPECT_EQ(Asked("./x", 1), kInvalid) << "a flag that means nothing";
    const OLECHAR half[] = {'.', '/', static_cast<OLECHAR>(0xD800), 0};
    Bstr text;
    EXPECT_EQ(Hex(m_accessor->GetXML(Bstr(half).get(), 0, text.put())), kInvalid);
    EXPECT_EQ(Hex(m_accessor->GetXML(nullptr, 0, text.put())), kInvalid);
    EXPECT_EQ(Hex(m_accessor->GetXML(Bstr(half).get(), 0, nullptr)), Hex(E_POINTER));
    BSTR rubbish = reinterpret_cast<BSTR>(static_cast<std::uintptr_t>(0x10));
    EXPECT_EQ(m_accessor->GetXML(Text("./y").get(), 0, &rubbish), S_FALSE);
    EXPECT_EQ(rubbish, nullptr) << "what the place holds is not looked at";
}

TEST_F(XmlQueries, NextDocumentReplacesTheLastOne) {
    LoadText("<top><x>1</x><x>2</x></top>");
    EXPECT_EQ(Asked("./x[2]"), "2");
    LoadText("<top><x>3</x><x>4</x></top>");
    EXPECT_EQ(Asked("./x[2]"), "4");
    EXPECT_LT(Load(m_accessor, Wide("<top>")), 0);
    EXPECT_EQ(Asked("./x[2]"), Hex(E_UNEXPECTED));
}

// As transport selection reads it. Each list is walked once; walked anew for each position, this would take minutes.
TEST_F(XmlQueries, LongCatalogueIsReadByPositionToItsEnd) {
    constexpr int kEntries = 20'000;
    std::string block = "<jobcontrol>\n";
    for (int i = 1; i <= kEntries; ++i) {
        const std::string number = std::to_string(i);
        block += "  <dll>\n    <type>T" + number + "</type>\n    <name>n" + number + ".dll</name>\n  </dll>\n";
    }
    block += "</jobcontrol>";
    LoadText("<transports><transportdlls>" + block + block + "</transportdlls></transports>");
    int read = 0;
    for (;; ++read) {
        const std::string entry = "./transportdlls/jobcontrol/dll[" + std::to_string(read + 1) + "]";
        if (Asked(entry + "/type") == kNoMatch) break;
        const std::string name = "n" + std::to_string(read + 1) + ".dll";
        ASSERT_EQ(Asked(entry + "/name"), name + ";" + name);
    }
    EXPECT_EQ(read, kEntries);
}

}  // namespace
}  // namespace wncom::test
