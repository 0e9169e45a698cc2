#include "fuzz/support/Fuzz.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    wncom::fuzz::Home();
    return 0;
}

namespace wncom::fuzz {

void Expect(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "Does not hold: %s\n", what);
    std::abort();
}

const std::string& Home() {
    static const std::string& home = *[] {
        auto* path = new std::string((std::filesystem::temp_directory_path() / "wncom-fuzz-XXXXXX").string());
        if (!mkdtemp(path->data())) std::abort();
        setenv("WNCOM_HOME", path->c_str(), 1);
        std::atexit([] { std::filesystem::remove_all(Home()); });
        return path;
    }();
    return home;
}

std::string PickText(FuzzedDataProvider& input, std::size_t most, std::string_view characters) {
    std::string text = input.ConsumeRandomLengthString(most);
    for (char& c : text) c = characters[static_cast<unsigned char>(c) % characters.size()];
    return text;
}

Wide PickWide(FuzzedDataProvider& input, std::size_t most, bool broken) {
    constexpr WCHAR kCharacters[] =
        OLESTR("aZ09 <>&;\"\u0080\u00E4\u00FF\u0153\u07FF\u0800\u20AC\uD7FF\uE000\uFFFD\uFFFF");
    constexpr std::size_t kCount = sizeof(kCharacters) / sizeof(WCHAR) - 1;
    Wide text;
    while (text.size() < most && input.remaining_bytes() > 0) {
        const auto choice = input.ConsumeIntegral<std::uint8_t>();
        const std::size_t extra = broken ? 3 : 1;
        const std::size_t which = choice % (kCount + extra);
        if (which < kCount) {
            text += kCharacters[which];
        } else if (which == kCount) {
            text += {0xD83D, static_cast<WCHAR>(0xDC00 + choice)};
        } else {
            text += static_cast<WCHAR>(which == kCount + 1 ? 0xD800 + choice : 0xDC00 + choice);
        }
    }
    return text;
}

}  // namespace wncom::fuzz
