// Code pages: a text is converted as its characters are one at a time.
#include "fuzz/support/Fuzz.h"
#include "winnls.h"

using namespace wncom::fuzz;

namespace {

Wide Widen(UINT codePage, std::string_view text) {
    Wide wide(text.size() + 1, u'?');
    const int units = text.empty() ? 0
                                   : MultiByteToWideChar(codePage, 0, text.data(), static_cast<int>(text.size()),
                                                         wide.data(), static_cast<int>(wide.size()));
    wide.resize(static_cast<std::size_t>(units));
    if (!text.empty()) {
        Expect(MultiByteToWideChar(codePage, 0, text.data(), static_cast<int>(text.size()), nullptr, 0) == units,
               "the room asked for is the room used");
    }
    return wide;
}

std::string Narrow(UINT codePage, const Wide& text) {
    std::string narrow(3 * text.size() + 1, '?');
    const int bytes = text.empty()
                          ? 0
                          : WideCharToMultiByte(codePage, 0, text.data(), static_cast<int>(text.size()),
                                                narrow.data(), static_cast<int>(narrow.size()), nullptr, nullptr);
    narrow.resize(static_cast<std::size_t>(bytes));
    return narrow;
}

// The bytes of the character at the text's start when it is UTF-8, else 0.
std::size_t CharacterLength(std::string_view text) {
    const auto at = [&](std::size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U; };
    const unsigned first = at(0);
    const std::size_t length = first < 0x80   ? 1
                               : first < 0xC2 ? 0
                               : first < 0xE0 ? 2
                               : first < 0xF0 ? 3
                               : first < 0xF5 ? 4
                                              : 0;
    for (std::size_t i = 1; i < length; ++i) {
        if ((at(i) & 0xC0) != 0x80) return 0;
    }
    const bool wrong = (first == 0xE0 && at(1) < 0xA0) || (first == 0xED && at(1) >= 0xA0) ||
                       (first == 0xF0 && at(1) < 0x90) || (first == 0xF4 && at(1) >= 0x90);
    return wrong ? 0 : length;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = View(data, size);
    Wide expected;
    for (const char& byte : text) expected += Widen(1252, {&byte, 1});
    Expect(Widen(1252, text) == expected, "1252 byte by byte");

    expected.clear();
    std::size_t at = 0;
    while (at < size) {
        const std::size_t length = CharacterLength(text.substr(at));
        if (length == 0) break;
        expected += Widen(CP_UTF8, text.substr(at, length));
        at += length;
    }
    Wide room(size + 1, u'?');
    const int strict = size == 0 ? 0
                                 : MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(),
                                                       static_cast<int>(size), room.data(), static_cast<int>(size));
    Expect((strict != 0 || size == 0) == (at == size), "what is no UTF-8 is refused");
    const Wide whole = Widen(CP_UTF8, text);
    Expect(whole.substr(0, expected.size()) == expected, "UTF-8 character by character");
    if (at == size) Expect(whole == expected && Narrow(CP_UTF8, whole) == text, "UTF-8 there and back");

    FuzzedDataProvider input(data, size);
    const Wide wide = PickWide(input, 256, false);
    std::string narrow;
    for (std::size_t i = 0; i < wide.size(); ++i) {
        const bool pair = wide[i] >= 0xD800 && wide[i] < 0xDC00;
        narrow += Narrow(1252, wide.substr(i, pair ? 2 : 1));
        if (pair) ++i;
    }
    Expect(Narrow(1252, wide) == narrow, "1252 character by character");
    Expect(Widen(CP_UTF8, Narrow(CP_UTF8, wide)) == wide, "UTF-16 there and back");
    return 0;
}
