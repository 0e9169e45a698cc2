// The strict reading of descriptions, and what the build tool makes of them.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>

#include "platform/typelib/Description.h"
#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

using wnplatform::typelib::Canonical;
using wnplatform::typelib::DescriptionError;
using wnplatform::typelib::Read;

constexpr const char* kUuidA = "uuid(11111111-0000-0000-0000-000000000001)";
constexpr const char* kUuidB = "uuid(11111111-0000-0000-0000-000000000002)";

// A library with this inside.
std::string LibraryWith(const std::string& body) {
    return std::string("[") + kUuidA + "] library L\n{ importlib(\"stdole2.tlb\");\n" + body + "\n};";
}

// An automation interface with this inside.
std::string InterfaceWith(const std::string& body) {
    return LibraryWith(std::string("[object, oleautomation, ") + kUuidB + "] interface IA : IUnknown {\n" + body +
                       "\n};");
}

// "LINE:COLUMN SENTENCE", or nothing for a description that is accepted.
std::string ErrorOf(const std::string& text) {
    try {
        Read(text);
        return {};
    } catch (const DescriptionError& error) {
        return std::to_string(error.Where().line) + ":" + std::to_string(error.Where().column) + " " + error.what();
    }
}

struct Refused {
    std::string text;
    std::string error;
};

void ExpectRefused(const std::vector<Refused>& cases) {
    for (const Refused& one : cases) EXPECT_EQ(ErrorOf(one.text), one.error) << one.text;
}

TEST(Description, AcceptsItsOwnCanonicalForm) {
    const std::string canonical = Canonical(*Read(ReadWholeFile(WNCOM_AGENT_IDL)));
    EXPECT_EQ(Canonical(*Read(canonical)), canonical);
    EXPECT_EQ(canonical.find("//"), std::string::npos);
}

TEST(Description, KeepsEverythingInItsCanonicalForm) {
    const std::string text = LibraryWith(
        "[object,uuid(11111111-0000-0000-0000-000000000002),version(1.2),helpstring(\"a \\\"b\\\" \\\\ c\"),hidden,"
        "restricted,dual,nonextensible,pointer_default(ref)]interface IA:IDispatch{\n"
        "[id(16),propget,helpstring(\"h\"),hidden]HRESULT P([out,retval]VARIANT_BOOL* v);\n"
        "[id(16),propputref]HRESULT P([in]IA* v);\n"
        "[restricted]HRESULT F([in]unsigned long a,[in]unsigned short b,LPWSTR c,[in,out]VARIANT* d);\n};\n"
        "[uuid(11111111-0000-0000-0000-000000000003),noncreatable]coclass C{\n"
        "[default]interface IA;\n[default,source,restricted]interface IUnknown;\n};");
    const std::string canonical = Canonical(*Read(text));
    for (const char* part : {"version(1.2)", "helpstring(\"a \\\"b\\\" \\\\ c\")",
                             "hidden,restricted,dual,nonextensible,"
                             "pointer_default(ref)",
                             "[id(16),propget,helpstring(\"h\"),hidden]",
                             "HRESULT F([in]unsigned long a,[in]unsigned short b,LPWSTR c,[in,out]VARIANT* d)",
                             "noncreatable", "[default,source,restricted]interface IUnknown"}) {
        EXPECT_NE(canonical.find(part), std::string::npos) << part;
    }
    EXPECT_EQ(Canonical(*Read(canonical)), canonical);
}

TEST(Description, SaysWhereItIsNotUnderstood) {
    ExpectRefused({
        {"", "1:1 Expected 'library' and found the end of the description."},
        {"/* never ends", "1:1 The comment has no end."},
        {"library L {", "1:12 Expected an interface, a coclass or importlib and found the end of the description."},
        {"#define X\nlibrary L {};", "1:1 The character '#' means nothing here."},
        {"[helpstring(\"a\nb\")] library L {};", "1:13 The text has no end."},
        {"[helpstring(\"a\\n\")] library L {};",
         "1:15 A backslash in a text stands before a quote or a backslash only."},
        {"[helpstring(\"\xC3\xA4\")] library L {};", "1:14 A text holds printable ASCII characters only."},
        {"[lcid(0x1FFFFFFFF)] library L {};", "1:7 The number 0x1FFFFFFFF has more than 32 bits."},
        {"[lcid(010)] library L {};", "1:7 '010' is no decimal or hexadecimal number."},
        {"[version(1.70000)] library L {};", "1:12 A version has the form 1.0, each part at most 65535."},
        {"[uuid(12)] library L {};", "1:7 An identifier has the form 01234567-89AB-CDEF-0123-456789ABCDEF."},
        {"[control] library L {};", "1:2 The attribute 'control' is not understood on a library."},
        {"[lcid(1), lcid(1)] library L {};", "1:11 The attribute 'lcid' stands twice."},
        {LibraryWith("importlib(\"other.tlb\");"), "3:1 The library \"other.tlb\" is not known; stdole2.tlb is."},
        {LibraryWith("typedef long X;"), "3:1 Expected an interface, a coclass or importlib and found 'typedef'."},
        {LibraryWith("") + " more", "4:4 Nothing stands behind the library, but found 'more'."},
    });
}

TEST(Description, RefusesWhatDoesNotFitTogether) {
    ExpectRefused({
        {"library L {};", "1:9 The library 'L' has no uuid."},
        {LibraryWith("[object] interface IA : IUnknown {};"), "3:20 'IA' has no uuid."},
        {LibraryWith(std::string("[") + kUuidA + "] interface IA : IUnknown {};"), "3:56 The uuid of 'IA' is taken."},
        {LibraryWith(std::string("[") + kUuidB + "] interface l : IUnknown {};"), "3:56 The name 'l' is taken."},
        {LibraryWith(std::string("[") + kUuidB + "] interface IA {};"), "3:56 'IA' has no base interface."},
        {LibraryWith(std::string("[") + kUuidB + "] interface IA : IB {};"),
         "3:61 The base interface 'IB' is not defined before this place."},
        {LibraryWith(std::string("[") + kUuidB + ", dual] coclass C { [default] interface IUnknown; };"),
         "3:1 The attribute 'dual' is not understood on a coclass."},
        {LibraryWith(std::string("[") + kUuidB + "] coclass C { [default] interface IA; };"),
         "3:78 The interface 'IA' is not known."},
        {LibraryWith(std::string("[") + kUuidB + "] coclass C { interface IUnknown; };"),
         "3:54 The coclass 'C' has no default interface."},
    });
}

TEST(Description, RefusesMethodsThatCannotBeDescribed) {
    ExpectRefused({
        {InterfaceWith("long F();"), "4:1 The method 'F' does not return HRESULT."},
        {InterfaceWith("HRESULT F([in] IB* b);"), "4:16 The type 'IB' is not known here."},
        {InterfaceWith("HRESULT F([in] IA b);"), "4:16 The interface 'IA' is passed by pointer only."},
        {InterfaceWith("HRESULT F([in] LPWSTR t);"),
         "4:16 The system cannot marshal the type 'LPWSTR', which an oleautomation interface needs."},
        {InterfaceWith("HRESULT F([out] BSTR t);"), "4:22 The [out] parameter 't' has no pointer to write through."},
        {InterfaceWith("HRESULT F([out] IUnknown* t);"),
         "4:27 The [out] parameter 't' has no pointer to write through."},
        {InterfaceWith("HRESULT F([out, retval] BSTR* t, [in] BSTR u);"),
         "4:31 The [retval] parameter 't' is not the last one, [out] only."},
        {InterfaceWith("HRESULT F([retval] BSTR* t);"),
         "4:26 The [retval] parameter 't' is not the last one, [out] only."},
        {InterfaceWith("HRESULT F([in] BSTR t, [in] BSTR T);"), "4:34 The parameter name 'T' is taken."},
        {InterfaceWith("[id(1)] HRESULT F();\n[id(1)] HRESULT G();"),
         "5:17 The id of the method 'G' is that of 'F'."},
        {InterfaceWith("[id(1)] HRESULT F();\n[id(2)] HRESULT f();"), "5:17 The method name 'f' is taken."},
        {InterfaceWith("HRESULT Release();"), "4:9 The method name 'Release' is taken."},
        {InterfaceWith("[id(1), propget] HRESULT P();"), "4:26 The propget method 'P' has no [retval] parameter."},
        {InterfaceWith("HRESULT F(long a, long b, long c, long d, long e, long f, long g, long h, long i, long j);"),
         "4:9 The method 'F' has more than nine parameters."},
    });
}

TEST(Description, RefusesAnInterfaceThatIsOnlyDeclared) {
    EXPECT_EQ(ErrorOf(LibraryWith(std::string("interface IB;\n[") + kUuidB +
                                  "] interface IA : IUnknown { HRESULT F(IB* b); };")),
              "4:82 The interface 'IB' is declared and never defined.");
}

TEST(Description, IsReadOrRefusedWhereverItBreaksOff) {
    const std::string canonical = Canonical(*Read(ReadWholeFile(WNCOM_AGENT_IDL)));
    // What stands behind the last bracket may be missing.
    const std::size_t needed = canonical.rfind('}');
    for (std::size_t length = 0; length <= needed; length += 11) {
        EXPECT_NE(ErrorOf(canonical.substr(0, length)), "") << length;
    }
}

int RunTool(const std::string& in, const std::string& out, const std::string& messages) {
    const std::string command = ProgramFolder() + "/wnidl " + in + " " + out + " 2>" + messages;
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(DescriptionTool, WritesWhatAModuleHolds) {
    const std::string out = HomePath() + "/out.typelib";
    ASSERT_EQ(RunTool(WNCOM_AGENT_IDL, out, HomePath() + "/messages"), 0);
    EXPECT_EQ(ReadWholeFile(out), Canonical(*Read(ReadWholeFile(WNCOM_AGENT_IDL))));
}

TEST(DescriptionTool, NamesFileLineAndColumnAndWritesNothing) {
    const std::string in = HomePath() + "/wrong.idl";
    const std::string out = HomePath() + "/wrong.typelib";
    WriteWholeFile(in, InterfaceWith("HRESULT F([in] IB* b);"));
    ASSERT_EQ(RunTool(in, out, HomePath() + "/messages"), 1);
    EXPECT_EQ(ReadWholeFile(HomePath() + "/messages"), in + ":4:16: error: The type 'IB' is not known here.\n");
    EXPECT_EQ(ReadWholeFile(out), "");
}

}  // namespace
}  // namespace wncom::test
