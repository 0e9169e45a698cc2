// Texts between the bridge and a device: what goes out means the same, and what comes back says all of the answer.
#include <stdexcept>

#include "bridge/TextConversions.h"
#include "common/CodePageText.h"
#include "fuzz/support/Fuzz.h"
#include "libraries/http/WireText.h"
#include "libraries/http/shared/OneLine.h"

using namespace wncom;
using namespace wncom::fuzz;

namespace {

// With numeric references resolved.
Wide Resolved(const Wide& text) {
    Wide resolved;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text.compare(at, 2, u"&#") != 0) {
            resolved += text[at];
            continue;
        }
        std::uint32_t number = 0;
        for (at += 2; at < text.size() && text[at] != u';'; ++at) {
            Expect(text[at] >= u'0' && text[at] <= u'9', "references are decimal");
            number = number * 10 + (text[at] - u'0');
        }
        if (number >= 0x10000) resolved += static_cast<WCHAR>(0xD800 + ((number - 0x10000) >> 10));
        resolved += static_cast<WCHAR>(number >= 0x10000 ? 0xDC00 + (number & 0x3FF) : number);
    }
    return resolved;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    const Wide text = PickWide(input, 200, false);
    const std::string wire = http::ToWire(WCharToUtf8(text.c_str()).get());
    Expect(Widen(CP_UTF8, wire) == text, "what goes out means the same");

    const std::string answer = http::XmlFromWire(wire);
    if (text.find(u"&#") == Wide::npos) {
        const Wide read = CStringToWChar(CString(answer.c_str())).get();
        Expect(Resolved(read) == text, "an answer comes back whole");
    }
    const std::string any = input.ConsumeRemainingBytesAsString();
    for (const char c : http::OneLine(any)) Expect(static_cast<unsigned char>(c) >= 0x20, "one line stays one line");
    try {
        http::XmlFromWire(http::ToWire(any));
    } catch (const std::invalid_argument&) {
    } catch (const std::runtime_error&) {
    }
    return 0;
}
