// The strict reading of descriptions, and what the build tool makes of them.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>

#include "platform/typelib/idl/Description.h"
#include "tests/support/TestHome.h"
#include "typelib_text.h"

namespace wncom::test {
namespace {

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

TEST(Description, ReachesCallersWithEverythingItSays) {
    const std::string text =
        "interface IB; [uuid(11111111-0000-0000-0000-000000000001), version(2.3), lcid(7), helpstring(\"l\")]"
        "library L { importlib(\"stdole2.tlb\"); /* a */"
        "[object, uuid(11111111-0000-0000-0000-000000000002), helpstring(\"a \\\"b\\\" \\\\ c\"), hidden, restricted,"
        " nonextensible, pointer_default(unique)] interface IA : IUnknown { // b\n"
        "[id(0x10), propget, helpstring(\"h\"), hidden] HRESULT P([out, retval] IB** v);"
        "[id(16), propputref] HRESULT P([in] IB* v);"
        "[restricted] HRESULT F([in, out] long* a, IDispatch* b, [out] IDispatch** c);"
        "}; interface IA; [object, uuid(11111111-0000-0000-0000-000000000003)] interface IB : IA { HRESULT G(); };"
        "[uuid(11111111-0000-0000-0000-000000000004), hidden] coclass C { interface IA; [default] interface IB; }; };";
    const std::string file = HomePath() + "/l.tlb";
    WriteWholeFile(file, Read(text).Blob());
    const Held<ITypeLib> library = LoadLibraryOf(file);
    ASSERT_TRUE(library);
    EXPECT_EQ(LibraryText(*library), R"(IA interface flags=0x290 : IUnknown "a "b" \ c"
3 0x10 P(out retval IB** v) kind=2 flags=0x40 "h"
4 0x10 P(in IB* v) kind=8 "h"
5 0x60010002 F(in out long* a, IDispatch* b, out IDispatch** c) flags=0x1 ""
IB interface flags=0x0 : IA ""
6 0x60020000 G() ""
C class flags=0x12 ""
0x0 IA
0x1 IB
)");
    // What it imports stands beside it.
    ITypeInfo* info = nullptr;
    ASSERT_EQ(library->GetTypeInfo(0, &info), S_OK);
    ITypeLib* standard = nullptr;
    const Held<ITypeInfo> first(info);
    ASSERT_EQ(Referenced(*first, 0)->GetContainingTypeLib(&standard, nullptr), S_OK);
    EXPECT_EQ(LibraryText(*Held<ITypeLib>(standard)), R"(IUnknown interface flags=0x10 : nothing ""
0 0x60000000 QueryInterface(in void* riid, out void** ppvObj) flags=0x1 ""
1 0x60000001 AddRef() type 19 flags=0x1 ""
2 0x60000002 Release() type 19 flags=0x1 ""
IDispatch interface flags=0x200 : IUnknown ""
3 0x60010000 GetTypeInfoCount(out type 23* pctinfo) flags=0x1 ""
4 0x60010001 GetTypeInfo(in type 23 itinfo, in type 19 lcid, out void** pptinfo) flags=0x1 ""
5 0x60010002 GetIDsOfNames(in void* riid, in void** rgszNames, in type 23 cNames, in type 19 lcid, out long* rgdispid) flags=0x1 ""
6 0x60010003 Invoke(in long dispidMember, in void* riid, in type 19 lcid, in type 18 wFlags, in void* pdispparams, out VARIANT* pvarResult, out void* pexcepinfo, out type 23* puArgErr) flags=0x1 ""
)");
}

TEST(Description, SaysWhereItIsNotUnderstood) {
    ExpectRefused({
        {"", "1:1 Expected 'library' and found the end of the description."},
        {"/* never ends", "1:1 The comment has no end."},
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
        {LibraryWith("importlib(\"other.tlb\");"),
         "3:11 The library \"other.tlb\" is not known. Only stdole2.tlb is."},
        {LibraryWith("typedef long X;"), "3:1 Expected an interface, a coclass or importlib and found 'typedef'."},
        {LibraryWith("") + " more", "4:4 Expected the end of the description and found 'more'."},
    });
}

TEST(Description, RefusesTypesThatDoNotFitTogether) {
    const auto with = [](const std::string& rest) { return LibraryWith(std::string("[") + kUuidB + rest); };
    ExpectRefused({
        {"library L {};", "1:9 'L' has no uuid."},
        {LibraryWith("[object] interface IA : IUnknown {};"), "3:20 'IA' has no uuid."},
        {LibraryWith(std::string("[") + kUuidA + "] interface IA : IUnknown {};"), "3:56 The uuid of 'IA' is taken."},
        {with("] interface l : IUnknown {};"), "3:56 The name 'l' is taken."},
        {with("] interface IA {};"), "3:56 'IA' has no base interface."},
        {with("] interface IA : IB {};"), "3:61 The base interface 'IB' is not defined yet."},
        {with("] interface IA : IA {};"), "3:61 The base interface 'IA' is not defined yet."},
        {with(", dual] coclass C { [default] interface IUnknown; };"),
         "3:46 The attribute 'dual' is not understood on a coclass."},
        {with("] coclass C { [default] interface IA; };"), "3:78 The interface 'IA' is not defined yet."},
        {with("] coclass C { interface IUnknown; };"), "3:54 The coclass 'C' has no default interface."},
        {with("] coclass C { [default] interface IUnknown; interface IUnknown; };"),
         "3:98 The coclass has 'IUnknown' twice."},
        {with("] coclass C { [default] interface IUnknown; [default] interface IDispatch; };"),
         "3:108 The coclass has two defaults."},
        {LibraryWith(std::string("interface IB;\n[") + kUuidB + "] interface IA : IUnknown { HRESULT F(IB* b); };"),
         "4:82 The interface 'IB' is declared and never defined."},
    });
}

TEST(Description, RefusesMethodsThatCannotBeDescribed) {
    ExpectRefused({
        {InterfaceWith("long F();"), "4:1 A method returns HRESULT, but found 'long'."},
        {InterfaceWith("HRESULT long();"), "4:9 Expected a method's name and found 'long'."},
        {InterfaceWith("HRESULT F([in] IB* b);"), "4:16 The type 'IB' is not known here."},
        {InterfaceWith("HRESULT F([in] VARIANT* b);"), "4:16 The type 'VARIANT' is not known here."},
        {InterfaceWith("HRESULT F([in] IA b);"), "4:16 No parameter can have the type 'IA'."},
        {InterfaceWith("HRESULT F([out] BSTR** t);"), "4:17 No parameter can have the type 'BSTR**'."},
        {InterfaceWith("HRESULT F([out] BSTR t);"), "4:22 The [out] parameter 't' has no pointer to write through."},
        {InterfaceWith("HRESULT F([out] IUnknown* t);"),
         "4:27 The [out] parameter 't' has no pointer to write through."},
        {InterfaceWith("HRESULT F([out] IA* t);"), "4:21 The [out] parameter 't' has no pointer to write through."},
        {InterfaceWith("HRESULT F([out, retval] BSTR* t, [in] BSTR u);"),
         "4:44 Nothing follows the [retval] parameter."},
        {InterfaceWith("HRESULT F([retval] BSTR* t);"), "4:26 The [retval] parameter 't' is not [out] alone."},
        {InterfaceWith("HRESULT F([in] BSTR t, [in] BSTR T);"), "4:34 The parameter name 'T' is taken."},
        {InterfaceWith("[id(1)] HRESULT F();\n[id(1)] HRESULT G();"),
         "5:17 The method 'G' has the id of another one."},
        {InterfaceWith("[id(1)] HRESULT F();\n[id(2)] HRESULT f();"), "5:17 The method name 'f' is taken."},
        {InterfaceWith("HRESULT Release();"), "4:9 The method name 'Release' is taken."},
        {InterfaceWith("[id(1), propget] HRESULT P();"), "4:26 The propget method 'P' has no [retval] parameter."},
        {InterfaceWith("[id(1), propput] HRESULT P();"),
         "4:26 The method 'P' has no last parameter that takes the property's value."},
        {InterfaceWith("[propput] HRESULT P(long a);"), "4:19 The property 'P' has no id for its methods to share."},
        {InterfaceWith("[id(1), propput, propget] HRESULT P(long a);"),
         "4:35 The method 'P' is more than one of propget, propput and propputref."},
        {InterfaceWith("HRESULT F(long a, long b, long c, long d, long e, long f, long g, long h, long i, long j);"),
         "4:9 The method 'F' has more than nine parameters."},
    });
}

TEST(Description, IsRefusedWhereverItBreaksOff) {
    const std::string text = ReadWholeFile(WNCOM_AGENT_IDL);
    // What stands behind the last bracket may be missing.
    for (std::size_t length = 0; length <= text.rfind('}'); length += 11) {
        EXPECT_NE(ErrorOf(text.substr(0, length)), "") << length;
    }
}

int RunTool(const std::string& in, const std::string& out, const std::string& messages) {
    const std::string command = ProgramFolder() + "/wnidl " + in + " " + out + " 2>" + messages;
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
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
