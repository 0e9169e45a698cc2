// Answers of a device: what the scanners find is part of the answer, and lists become documents item by item.
#include "agent/Array2XML.h"
#include "agent/SubmitResponse.h"
#include "fuzz/support/Fuzz.h"

using namespace wncom;
using namespace wncom::fuzz;

namespace {

void ExpectPart(const Bstr& found, const Wide& answer) {
    if (!found) return;
    const Wide text(found.get(), SysStringLen(found.get()));
    Expect(answer.find(text) != Wide::npos, "what is found is part of the answer");
}

// Tags and words that the scanners look for, with anything between them.
Wide PickAnswer(FuzzedDataProvider& input) {
    const std::u16string_view pieces[] = {u"<",       u">",      u"</",      u"/>",          u"PostURI",
                                          u"sinkURI", u"JobUri", u"posturi", u" uri=",       u"\"",
                                          u"'",       u"=",      u" ",       u"AddressType", u"DeliveryMethod"};
    Wide answer;
    while (input.remaining_bytes() > 0 && answer.size() < 2000) {
        const auto which = input.ConsumeIntegralInRange<std::size_t>(0, std::size(pieces));
        if (which < std::size(pieces)) {
            answer += pieces[which];
        } else {
            answer += PickWide(input, input.ConsumeIntegral<std::uint8_t>(), true);
        }
    }
    return answer;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    const std::string item = PickText(input, 12, "ab<&>\xE4");
    const std::string other = PickText(input, 300, "ab ");
    const char* const list[] = {item.c_str(), other.c_str(), nullptr};
    const std::string document = Array2XML(list, "Root", "Item").get();
    const std::size_t first = document.find("<Item>" + item + "</Item>");
    Expect(first != std::string::npos && document.find("<Item>" + other + "</Item>", first) != std::string::npos,
           "each item stands in the document, in order");

    const Wide answer = PickAnswer(input);
    const std::u16string keywords[] = {u"PostURI", u"sinkURI", u"a"};
    const std::u16string attributes[] = {u"uri", u"AddressType"};
    for (const auto& keyword : keywords) {
        ExpectPart(ParseSubmitResponse(answer, keyword.c_str(), nullptr), answer);
        for (const auto& attribute : attributes) {
            ExpectPart(ParseSubmitResponse(answer, keyword.c_str(), attribute.c_str()), answer);
            ExpectPart(ParseSubmitResponse(answer, u"not there", attribute.c_str()), answer);
        }
    }
    ExpectPart(ParseSubmitResponse4URI(answer).address, answer);
    ExpectPart(ParseSubmitResponse4JobURI(answer), answer);
    return 0;
}
