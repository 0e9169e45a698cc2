// Which documents the accessor takes, from files and as texts, and which it refuses.
#include "tests/components/ComponentsFixture.h"

namespace wncom::test {
namespace {

class XmlDocuments : public ComponentsFixture {
protected:
    std::string LoadText(std::string_view ascii) { return Hex(Load(m_accessor, Wide(ascii))); }
    // The text of the top element of a file with these bytes, or the status of loading it.
    std::string TextOfFile(const std::string& bytes) {
        const std::string path = PathOf("document.xml");
        WriteWholeFile(path, bytes);
        const HRESULT status = Load(m_accessor, Wide(path));
        return status == S_OK ? Ask(m_accessor, ".") : Hex(status);
    }

    CPComPtr<IXMLSimpleAccessor> m_accessor = Create<IXMLSimpleAccessor>(kProgIdXMLSimpleAccessor);
};

std::string Utf16(std::string_view ascii, bool littleEndian = true) {
    std::string bytes;
    for (const char c : ascii) {
        bytes += littleEndian ? c : '\0';
        bytes += littleEndian ? '\0' : c;
    }
    return bytes;
}

TEST_F(XmlDocuments, EncodingsAreDecodedByMarkOrDeclaration) {
    const std::string littleMark = "\xFF\xFE";
    const std::string declared = "<?xml version='1.0' encoding=";
    const struct {
        std::string bytes;
        std::string text;
    } kFiles[] = {
        {"<t>\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80</t>", "\\u00e9\\u20ac\\ud83d\\ude00"},
        {"\xEF\xBB\xBF<t>\xC3\xA9</t>", "\\u00e9"},
        {declared + "'utf-8'?><t>\xC3\xA9</t>", "\\u00e9"},
        {declared + "\"ISO-8859-1\"?><t>\xE9\x80</t>", "\\u00e9\\u0080"},
        {declared + "'Windows-1252'?><t>\xE9\x80</t>", "\\u00e9\\u20ac"},
        {littleMark + Utf16(declared + "'UTF-16'?><t>a</t>"), "a"},
        {"\xFE\xFF" + Utf16("<t>a</t>", false), "a"},
        {littleMark + Utf16("<t>") + std::string("\x3D\xD8\x00\xDE", 4) + Utf16("</t>"), "\\ud83d\\ude00"},
        {"<t>\xE9</t>", kInvalidData},          // one byte of Latin 1 without a declaration
        {"<t>\xC0\xAF</t>", kInvalidData},      // an overlong form
        {"<t>\xED\xA0\x80</t>", kInvalidData},  // an encoded surrogate
        {declared + "'Shift_JIS'?><t/>", kInvalidData},
        {littleMark + Utf16("<t/>") + "x", kInvalidData},  // half a character
        {littleMark + Utf16("<t>") + std::string("\x3D\xD8", 2) + Utf16("</t>"), kInvalidData},
        {Utf16("<t/>"), kInvalidData},  // UTF-16 without its mark
    };
    for (const auto& file : kFiles) EXPECT_EQ(TextOfFile(file.bytes), file.text) << file.bytes;
}

TEST_F(XmlDocuments, TextItselfIsLoadedWhateverItsDeclarationSays) {
    const WideText document = WideText(1, static_cast<OLECHAR>(0xFEFF)) +
                              Wide(" \t\r\n<?xml version='1.0' encoding='Shift_JIS'?>\n<!-- c --><t>") +
                              WideText(1, static_cast<OLECHAR>(0x20AC)) + Wide("</t>\n<?end?>\n");
    ASSERT_EQ(Hex(Load(m_accessor, document)), Hex(S_OK));
    EXPECT_EQ(Ask(m_accessor, "."), "\\u20ac");
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
    EXPECT_EQ(LoadText(""), Hex(E_INVALIDARG));
}

TEST_F(XmlDocuments, MalformedDocumentIsRefused) {
    for (const std::string_view document : {"<",
                                            "<t",
                                            "<t>",
                                            "<t></u>",
                                            "<t/><t/>",
                                            "<t/>text",
                                            "<t a=1/>",
                                            "<t><![CDATA[x</t>",
                                            "<1/>",
                                            "<!-- only -->",
                                            "<t>&#0;</t>",
                                            "<t>&#x0000;</t>",
                                            "<t>&#xD800;</t>",
                                            "<t>&#1114112;</t>",
                                            "<t a='&#18446744073709551616;'/>",
                                            "<t/><![CDATA[x]]>",
                                            "<t a='<!--' b='&#0;-->'/>",
                                            "<t>a & b</t>",
                                            "<t>&unknown;</t>",
                                            "<!DOCTYPE t SYSTEM 'elsewhere'><t>&unknown;</t>",
                                            "<t a='1' a='2'/>",
                                            "<t>\x01</t>",
                                            "<t a='&lt'/>",
                                            "<t>]]></t>",
                                            "<t><!-- a -- b --></t>",
                                            "<!DOCTYPE t [<!ENTITY e 'x'>]><t/>",
                                            "<!DOCTYPE t [<!ENTITY f SYSTEM 'file:///etc/passwd'>]><t>&f;</t>"}) {
        EXPECT_EQ(LoadText(document), kInvalidData) << document;
        EXPECT_EQ(Ask(m_accessor, "."), Hex(E_UNEXPECTED)) << document;
    }
    EXPECT_EQ(LoadText(std::string_view("<t>\0</t>", 8)), kInvalidData);
    EXPECT_EQ(LoadText(std::string_view("<t/>\0<u/>", 9)), kInvalidData);
    EXPECT_EQ(LoadText("<t><!-- &#0; --><![CDATA[&#0;]]><?p &#0;?></t>"), Hex(S_OK)) << "no references";
}

TEST_F(XmlDocuments, FileCutOffAnywhereIsRefused) {
    const std::string whole =
        "<?xml version='1.0'?><!DOCTYPE t [<!ELEMENT t ANY>]><t a='1'><!-- c --><b>&lt;<![CDATA[d]]></b></t>";
    ASSERT_EQ(TextOfFile(whole), "<d");
    for (std::size_t length = 1; length < whole.size(); ++length) {
        EXPECT_EQ(TextOfFile(whole.substr(0, length)), kInvalidData) << whole.substr(0, length);
    }
}

TEST_F(XmlDocuments, DepthIsNoDanger) {
    constexpr int kDepth = 100'000;
    std::string document;
    for (int i = 0; i < kDepth; ++i) document += "<a>";
    document += "x";
    for (int i = 0; i < kDepth; ++i) document += "</a>";
    ASSERT_EQ(LoadText(document), Hex(S_OK));
    EXPECT_EQ(Ask(m_accessor, "."), "x");
    EXPECT_EQ(Ask(m_accessor, "count(//a)"), std::to_string(kDepth));
}

TEST_F(XmlDocuments, DocumentBeyondTheLimitIsRefused) {
    const std::string filler(64 * 1024 * 1024 - 7, ' ');
    EXPECT_EQ(TextOfFile("<t>" + filler + "</t>").size(), filler.size()) << "the largest";
    EXPECT_EQ(TextOfFile("<t>" + filler + " </t>"), Hex(HRESULT_FROM_WIN32(ERROR_FILE_TOO_LARGE)));
    EXPECT_EQ(Ask(m_accessor, "."), Hex(E_UNEXPECTED));
}

}  // namespace
}  // namespace wncom::test
