// The scanner of submit responses: a response, a keyword, an attribute, and the value found.
#include <gtest/gtest.h>

#include <new>

#include "agent/SubmitResponse.h"
#include "tests/support/Com.h"
#include "tests/support/Golden.h"
#include "tests/support/LogCapture.h"

namespace wncom::test {
namespace {

struct Scan {
    const char* response;
    const char* keyword;
    const char* attribute;  // null for none
    const char* value;      // null when nothing is found
};

std::string Scanned(const Scan& scan) {
    const auto response = Wide(scan.response);
    const auto keyword = Wide(scan.keyword);
    const auto attribute = Wide(scan.attribute ? scan.attribute : "");
    const Bstr value = ParseSubmitResponse(response, keyword.c_str(), scan.attribute ? attribute.c_str() : nullptr);
    return value ? Narrow(value.get()) : "(null)";
}

TEST(SubmitResponse, FindsWhatTheKeywordOrTheAttributeIntroduces) {
    const Scan scans[] = {
        // element text: leading white space dropped, trailing kept
        {"<R><JobUri>  j7</JobUri></R>", "JobUri", nullptr, "j7"},
        {"<R><JobUri> \t\r\n j7 \n</JobUri></R>", "JobUri", nullptr, "j7 \n"},
        // the first character exact, the rest without case
        {"<JOBURI>a</JOBURI>", "JobUri", nullptr, "a"},
        {"<jobUri>a</jobUri>", "JobUri", nullptr, nullptr},
        // an empty element holds nothing; its attribute does
        {"<Target PostURI URI=\" p1 \"/>", "PostURI", nullptr, nullptr},
        {"<R><Target PostURI URI=\" p1 \"/></R>", "PostURI", "URI", "p1 "},
        // the quote that opened closes
        {"<T PostURI URI='a\"b'/>", "PostURI", "URI", "a\"b"},
        {"<T PostURI URI=\"it's\"/>", "PostURI", "URI", "it's"},
        // an absent keyword: the attribute is looked for in the first tag, and no further
        {"<?xml version='1.0'?><R sinkURI='s1'/>", "PostURI", "URI", nullptr},
        {"<R sinkURI='s1'/>", "PostURI", "URI", "s1"},
        {"<?xml version='1.0'?><R sinkURI='s1'/>", "sinkURI", "=", "s1"},
        {"<?xml version='1.0'?><R sinkURI='s1'/>", "sinkURI", nullptr, nullptr},
        // the attribute missed: the element's text counts after all
        {"<PostURI>p</PostURI>", "PostURI", "URI", "p"},
        // texts that end too early
        {"", "PostURI", nullptr, nullptr},
        {"Post", "PostURI", "URI", nullptr},
        {"PostURI", "PostURI", nullptr, nullptr},
        {"PostURI>", "PostURI", nullptr, nullptr},
        {"PostURI>p", "PostURI", nullptr, nullptr},
        {"PostURI URI", "PostURI", "URI", nullptr},
        {"PostURI URI=\"", "PostURI", "URI", nullptr},
        {"PostURI URI=\"p", "PostURI", "URI", nullptr},
        {"PostURI URI=\"   ", "PostURI", "URI", nullptr},
        // an unclosed quote: the search goes on for an element's text from there
        {"PostURI URI=\"p>q<", "PostURI", "URI", "q"},
        {"PostURI URI=\"\" >q<", "PostURI", "URI", nullptr},
        // a partial match does not hide the whole one
        {"<PostPostURI>p</PostPostURI>", "PostURI", nullptr, "p"},
    };
    for (const Scan& scan : scans) {
        SCOPED_TRACE(std::string(scan.response) + " | " + scan.keyword + " | " +
                     (scan.attribute ? scan.attribute : "(none)"));
        EXPECT_EQ(Scanned(scan), scan.value ? scan.value : "(null)");
    }
}

TEST(SubmitResponse, FindsTheKeywordWhereverItStands) {
    // Beginnings, ends and false beginnings of the keyword before it.
    for (const std::string filler : {"x", "J", "i", "JobUr", "JobXXi", "jobUri", "Jo <i>"}) {
        std::string before;
        while (before.size() < 300) {
            before += filler;
            EXPECT_EQ(Scanned({(before + "JobUri>v<").c_str(), "JobUri", nullptr, nullptr}), "v") << before;
            EXPECT_EQ(Scanned({(before + "jobUri>v<").c_str(), "JobUri", nullptr, nullptr}), "(null)") << before;
        }
    }
}

TEST(SubmitResponse, EachStepIsLogged) {
    const LogCapture log(3);
    ParseSubmitResponse({}, OLESTR("PostURI"), nullptr);
    for (const WCHAR* response : {OLESTR("<R PostURI URI=x/>"), OLESTR("<R PostURI URI='x'/>"), OLESTR("<R/>")}) {
        ParseSubmitResponse(response, OLESTR("PostURI"), OLESTR("URI"));
    }
    std::string lines;
    for (const std::string& line : log.Lines()) lines += line + "\n";
    ExpectGolden("agent/golden/scan.log", lines);
}

TEST(SubmitResponse, TheDataAddressTellsItsTypeAndMethod) {
    struct Case {
        const char* response;
        const char* address;
        LONG type;
        LONG method;
    };
    for (const Case& expected : {Case{"<R><JobUri>j</JobUri><PostURI>p1</PostURI></R>", "p1", 0, 1},
                                 Case{"<?x?><R><sinkURI>s1</sinkURI></R>", "s1", 0, 3},
                                 Case{"<?x?><R sinkURI='s1'/>", "s1", 0, 3}, Case{"<R/>", "", -1, -1}}) {
        const DataAddress data = ParseSubmitResponse4URI(Wide(expected.response));
        EXPECT_EQ(Narrow(data.address.get()), expected.address) << expected.response;
        EXPECT_EQ(data.addressType, expected.type) << expected.response;
        EXPECT_EQ(data.deliveryMethod, expected.method) << expected.response;
    }
}

}  // namespace
}  // namespace wncom::test
