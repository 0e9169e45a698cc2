#include "tools/wn/Texts.h"

#include "tools/wn/Command.h"

namespace wn {

std::string ToUtf8(std::basic_string_view<OLECHAR> text) {
    if (text.empty()) return {};
    const int units = static_cast<int>(text.size());
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, text.data(), units, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<std::size_t>(bytes), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), units, result.data(), bytes, nullptr, nullptr);
    return result;
}

wncom::Bstr FromUtf8(std::string_view text, const std::string& what) {
    wncom::Bstr result;
    if (text.empty()) {
        result.attach(SysAllocStringLen(nullptr, 0));
        return result;
    }
    const int bytes = static_cast<int>(text.size());
    const int units = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), bytes, nullptr, 0);
    if (units <= 0) throw CommandError(what + " is not UTF-8 text");
    result.attach(SysAllocStringLen(nullptr, static_cast<UINT>(units)));
    if (!result) throw CommandError(what + " does not fit into memory");
    MultiByteToWideChar(CP_UTF8, 0, text.data(), bytes, result.get(), units);
    return result;
}

}  // namespace wn
