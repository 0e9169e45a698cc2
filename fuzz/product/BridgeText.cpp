// The bridge's conversions: as the plain rule has it, unit by unit, whatever room there is.
#include "bridge/TextConversions.h"
#include "fuzz/support/Fuzz.h"

using namespace wncom;
using namespace wncom::fuzz;

namespace {

std::string Encoded(const Wide& text) {
    std::string bytes;
    for (const WCHAR unit : text) {
        if (unit < 0x80) {
            bytes += static_cast<char>(unit);
        } else if (unit < 0x800) {
            bytes += {static_cast<char>(0xC0 | unit >> 6), static_cast<char>(0x80 | (unit & 0x3F))};
        } else {
            bytes += {static_cast<char>(0xE0 | unit >> 12), static_cast<char>(0x80 | (unit >> 6 & 0x3F)),
                      static_cast<char>(0x80 | (unit & 0x3F))};
        }
    }
    return bytes;
}

// Up to the first sequence that is illegal or cut off; over-long ones and surrogates are as good as others.
Wide Decoded(std::string_view text) {
    Wide units;
    for (std::size_t i = 0; i < text.size();) {
        const auto at = [&](std::size_t k) { return static_cast<unsigned char>(text[i + k]); };
        const std::size_t length = at(0) < 0x80 ? 1 : at(0) >> 5 == 6 ? 2 : at(0) >> 4 == 14 ? 3 : 0;
        if (length == 0 || length > text.size() - i) break;
        unsigned unit = length == 1 ? at(0) : at(0) & (0xFF >> (length + 1));
        bool legal = true;
        for (std::size_t k = 1; k < length; ++k) {
            legal = legal && (at(k) & 0xC0) == 0x80;
            unit = unit << 6 | (at(k) & 0x3F);
        }
        if (!legal) break;
        units += static_cast<WCHAR>(unit);
        i += length;
    }
    return units;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    const auto room = input.ConsumeIntegralInRange<std::size_t>(0, 400);
    const std::string bytes = input.ConsumeRandomLengthString(300);
    const Wide text = PickWide(input, 300, true);

    const std::string expected = Encoded(text);
    std::string written(room, '?');
    std::ptrdiff_t count = 0;
    const int left = u16_utf8(text.data(), static_cast<std::ptrdiff_t>(text.size()), written.data(),
                              static_cast<std::ptrdiff_t>(room), &count);
    written.resize(static_cast<std::size_t>(count));
    Expect(expected.substr(0, written.size()) == written, "encoded unit by unit");
    Expect((left == 0) == (written.size() == expected.size()), "zero says that all was written");
    Expect(WCharToUtf8(text.c_str()).get() == expected, "the whole text encoded");

    const Wide decoded = Decoded(bytes);
    Wide units(room, u'?');
    std::ptrdiff_t consumed = 0;
    const int state = utf8_u16(bytes.data(), static_cast<std::ptrdiff_t>(bytes.size()), &consumed, units.data(),
                               static_cast<std::ptrdiff_t>(room));
    Expect(consumed >= 0 && static_cast<std::size_t>(consumed) <= bytes.size(), "consumed is part of the input");
    const std::size_t common = std::min(room, decoded.size());
    Expect(units.substr(0, common) == decoded.substr(0, common), "decoded sequence by sequence");
    if (state == 0) Expect(static_cast<std::size_t>(consumed) == bytes.size(), "zero says that all was read");
    const std::string terminated = bytes.substr(0, bytes.find('\0'));
    // An over-long zero ends the text.
    const Wide whole = Decoded(terminated);
    Expect(Utf8ToWChar(terminated.c_str()).get() == whole.substr(0, whole.find(u'\0')), "the whole text decoded");

    Wide narrow;
    for (const char& byte : terminated) {
        WCHAR unit = 0;
        MultiByteToWideChar(CP_ACP, 0, &byte, 1, &unit, 1);
        narrow += unit;
    }
    Expect(CStringToWChar(CString(terminated.c_str())).get() == narrow, "the narrow code page byte by byte");
    return 0;
}
