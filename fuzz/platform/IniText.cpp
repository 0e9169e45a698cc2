// Initialisation files: what was written is found, and what was taken away is not, whatever the text held before.
#include "platform/files/IniText.h"
#include "fuzz/support/Fuzz.h"

using namespace wncom::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    const std::string section = "s" + PickText(input, 4, "sS 1");
    const std::string key = "k" + PickText(input, 4, "kK 1") + "x";
    const std::string value = "v" + PickText(input, 8, "v=;[]\"' \t\xE4") + "v";
    const std::string text = input.ConsumeRemainingBytesAsString();

    const std::string written = wnplatform::WithIniValue(text, section, key, value);
    Expect(wnplatform::FindIniValue(written, section, key) == value, "a written value is found");
    // A section or a key that stands twice is taken away as often.
    std::string rest = written;
    for (std::size_t i = 0; i <= text.size() && wnplatform::FindIniValue(rest, section, key); ++i) {
        rest = wnplatform::WithIniValue(rest, section, key, std::nullopt);
    }
    Expect(!wnplatform::FindIniValue(rest, section, key), "a removed key is gone");
    return 0;
}
