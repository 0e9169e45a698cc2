// Which documents the accessor takes, from files and as texts, and which it refuses.
#include "tests/components/ComponentsFixture.h"

namespace wncom::test {
namespace {

class XmlDocuments : public ComponentsFixture {
protected:
    HRESULT LoadText(std::string_view ascii) { return Load(m_accessor, Wide(ascii)); }
    HRESULT LoadFile(const std::string& bytes) {
        const std::string path = PathOf("document.xml");
        WriteWholeFile(path, bytes);
        return Load(m_accessor, Wide(path));
    }
    // The text of the top element of a file with these bytes, or the status of loading it.
    std::string TextOfFile(const std::string& bytes) {
        const HRESULT status = LoadFile(bytes);
        return status == S_OK ? Ask(m_accessor, ".") : Hex(status);
    }

    CPComPtr<IXMLSimpleAccessor> m_accessor = Create<IXMLSimpleAccessor>(kProgIdXMLSimpleAccessor);
};

const std::string kInvalidData = Hex(HRESULT_FROM_WIN32(ERROR_INVALID_DATA));

std::string Utf16(std::string_view ascii, bool littleEndian) {
    std::string bytes;
    for (const char c : ascii) {
        bytes += littleEndian ? c : '\0';
        bytes += littleEndian ? '\0' : c;
    }
    return bytes;
}

TEST_F(XmlDocuments, EncodingsAreDecodedByMarkOrDeclaration) {
    EXPECT_EQ(TextOfFile("<t>\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80</t>"), "\\u00e9\\u20ac\\ud83d\\ude00");
    EXPECT_EQ(TextOfFile("\xEF\xBB\xBF<t>\xC3\xA9</t>"), "\\u00e9");
    EXPECT_EQ(TextOfFile("<?xml version='1.0' encoding='utf-8'?><t>\xC3\xA9</t>"), "\\u00e9");
    EXPECT_EQ(TextOfFile("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><t>\xE9\x80</t>"), "\\u00e9\\u0080");
    EXPECT_EQ(TextOfFile("<?xml version='1.0' encoding='Windows-1252'?><t>\xE9\x80</t>"), "\\u00e9\\u20ac");
    EXPECT_EQ(TextOfFile("\xFF\xFE" + Utf16("<t>a</t>", true)), "a");
    EXPECT_EQ(TextOfFile("\xFE\xFF" + Utf16("<?xml version='1.0' encoding='UTF-16'?><t>a</t>", false)), "a");
    EXPECT_EQ(TextOfFile("\xFF\xFE" + Utf16("<t>", true) + std::string("\x3D\xD8\x00\xDE", 4) + Utf16("</t>", true)),
              "\\ud83d\\ude00");
}

TEST_F(XmlDocuments, WrongEncodingIsRefused) {
    EXPECT_EQ(TextOfFile("<t>\xE9</t>"), kInvalidData) << "one byte of Latin 1 without a declaration";
    EXPECT_EQ(TextOfFile("<t>\xC0\xAF</t>"), kInvalidData) << "an overlong form";
    EXPECT_EQ(TextOfFile("<t>\xED\xA0\x80</t>"), kInvalidData) << "an encoded surrogate";
    EXPECT_EQ(TextOfFile("<?xml version='1.0' encoding='Shift_JIS'?><t/>"), kInvalidData);
    EXPECT_EQ(TextOfFile("\xFF\xFE" + Utf16("<t/>", true) + "x"), kInvalidData) << "half a character";
    EXPECT_EQ(TextOfFile("\xFF\xFE" + Utf16("<t>", true) + std::string("\x3D\xD8", 2) + Utf16("</t>", true)),
              kInvalidData)
        << "half a surrogate pair";
    EXPECT_EQ(TextOfFile(Utf16("<t/>", true)), kInvalidData) << "UTF-16 without its mark";
}

TEST_F(XmlDocuments, TextItselfIsLoadedWhateverItsDeclarationSays) {
    const WideText document = WideText(1, static_cast<OLECHAR>(0xFEFF)) +
                              Wide("<?xml version='1.0' encoding='Shift_JIS'?>\n<!-- c --><t>") +
                              WideText(1, static_cast<OLECHAR>(0x20AC)) + Wide("</t>\n<?end?>\n");
    ASSERT_EQ(Hex(Load(m_accessor, document)), Hex(S_OK));
    EXPECT_EQ(Ask(m_accessor, "."), "\\u20ac");
    EXPECT_EQ(Hex(LoadText(" \t\r\n<?xml version='1.0'?><t>b</t>")), Hex(S_OK));
    EXPECT_EQ(Hex(Load(m_accessor, Wide("<t>") + WideText(1, static_cast<OLECHAR>(0xDC00)) + Wide("</t>"))),
              kInvalidData);
}

TEST_F(XmlDocuments, PathIsReadAsTheSystemReadsPaths) {
    WriteWholeFile(PathOf("Folder/Document.xml"), "<t>a</t>");
    EXPECT_EQ(Hex(Load(m_accessor, Wide(PathOf("folder\\DOCUMENT.XML")))), Hex(S_OK));
    EXPECT_EQ(Hex(Load(m_accessor, Wide(PathOf("absent.xml")))), Hex(HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND)));
    EXPECT_EQ(Hex(Load(m_accessor, Wide(PathOf("no/absent.xml")))), Hex(HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND)));
    EXPECT_LT(Load(m_accessor, Wide(PathOf("Folder"))), 0);
    EXPECT_LT(Load(m_accessor, Wide(PathOf("Folder/Document.xml")) + WideText(1, OLECHAR()) + Wide("x")), 0);
    EXPECT_EQ(Hex(m_accessor->LoadXML(nullptr)), Hex(E_INVALIDARG));
    EXPECT_EQ(Hex(LoadText("")), Hex(E_INVALIDARG));
}

TEST_F(XmlDocuments, MalformedDocumentIsRefused) {
    for (const char* document : {"<", "<t", "<t>", "<t></u>", "<t/><t/>", "<t/>text", "<t a=1/>", "<t><![CDATA[x</t>",
                                 "<1/>", "<!-- only -->", "<t>&#0;</t>", "<t>&#x0000;</t>", "<t>&#xD800;</t>",
                                 "<t>&#1114112;</t>", "<t a='&#18446744073709551616;'/>", "<t/><![CDATA[x]]>"}) {
        EXPECT_LT(LoadText(document), 0) << document;
        EXPECT_EQ(Ask(m_accessor, "."), Hex(E_UNEXPECTED)) << document;
    }
    EXPECT_EQ(Hex(LoadText("<t><!-- &#0; --><![CDATA[&#0;]]><?p &#0;?></t>")), Hex(S_OK)) << "no references";
    EXPECT_EQ(Hex(LoadText(std::string_view("<t>\0</t>", 8))), kInvalidData);
    EXPECT_EQ(Hex(LoadText(std::string_view("<t/>\0<u/>", 9))), kInvalidData);
}

TEST_F(XmlDocuments, FileCutOffAnywhereIsRefused) {
    const std::string whole =
        "<?xml version='1.0'?><!DOCTYPE t [<!ENTITY e 'x'>]><t a='1'><!-- c --><b>&lt;<![CDATA[d]]></b></t>";
    ASSERT_EQ(Hex(LoadFile(whole)), Hex(S_OK));
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_LT(LoadFile(whole.substr(0, length)), 0) << whole.substr(0, length);
    }
}

TEST_F(XmlDocuments, DeclaredEntitiesAreNotExpanded) {
    std::string document = "<!DOCTYPE t [<!ENTITY a0 'ha'>";
    for (int i = 1; i < 30; ++i) {
        const std::string below = "&a" + std::to_string(i - 1) + ";";
        document += "<!ENTITY a" + std::to_string(i) + " '" + below + below + "'>";
    }
    ASSERT_EQ(Hex(LoadText(document + "<!ENTITY f SYSTEM 'file:///etc/passwd'>]><t>&a29;&f;</t>")), Hex(S_OK));
    EXPECT_EQ(Ask(m_accessor, "."), "&a29;&f;");
}

TEST_F(XmlDocuments, DepthIsNoDanger) {
    constexpr int kDepth = 100'000;
    std::string document;
    for (int i = 0; i < kDepth; ++i) document += "<a>";
    document += "x";
    for (int i = 0; i < kDepth; ++i) document += "</a>";
    ASSERT_EQ(Hex(LoadText(document)), Hex(S_OK));
    EXPECT_EQ(Ask(m_accessor, "."), "x");
    EXPECT_EQ(Ask(m_accessor, "count(//a)"), std::to_string(kDepth));
    EXPECT_LT(LoadText(document.substr(0, document.size() - 4)), 0);
}

TEST_F(XmlDocuments, DocumentBeyondTheLimitIsRefused) {
    const std::string filler(64 * 1024 * 1024, ' ');
    EXPECT_EQ(TextOfFile("<t>" + filler + "</t>"), Hex(HRESULT_FROM_WIN32(ERROR_FILE_TOO_LARGE)));
    EXPECT_EQ(Ask(m_accessor, "."), Hex(E_UNEXPECTED));
}

}  // namespace
}  // namespace wncom::test
