#include "bench/text/Samples.h"

#include <algorithm>
#include <random>

namespace wncom::bench {
namespace {

class Letters {
public:
    explicit Letters(Script script) : m_script(script) {}

    WCHAR Next() {
        const auto choice = static_cast<unsigned>(m_numbers() >> 8);
        switch (m_script) {
            case Script::Latin:
                if (choice % 8 == 0) return static_cast<WCHAR>(0xE0 + choice / 8 % 23);
                break;
            case Script::Cjk:
                if (choice % 32 != 0) return static_cast<WCHAR>(0x4E00 + choice / 32 % 0x5000);
                return choice / 32 % 2 == 0 ? OLESTR(',') : OLESTR('\n');
            case Script::Ascii:
                break;
        }
        return choice / 256 % 6 == 0 ? OLESTR(' ') : static_cast<WCHAR>(OLESTR('a') + choice / 2048 % 26);
    }

private:
    Script m_script;
    std::mt19937 m_numbers;
};

}  // namespace

const char* NameOf(Script script) {
    return script == Script::Ascii ? "ASCII" : script == Script::Latin ? "Latin" : "CJK";
}

WideText Sample(Script script, std::size_t utf8Bytes) {
    Letters letters(script);
    WideText text;
    for (std::size_t bytes = 0; bytes < utf8Bytes;) {
        text += letters.Next();
        bytes += text.back() < 0x80 ? 1 : text.back() < 0x800 ? 2 : 3;
    }
    return text;
}

std::string SizeName(std::size_t bytes) {
    return bytes >> 20 != 0 ? std::to_string(bytes >> 20) + " MB" : std::to_string(bytes >> 10) + " KB";
}

std::size_t ConversionsInSlice(std::size_t bytes) { return std::max<std::size_t>((512U << 10) / bytes, 1); }

}  // namespace wncom::bench
