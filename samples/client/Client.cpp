#include "samples/client/Client.h"

#include <cstdio>

namespace sample {

std::string Hex(HRESULT status) {
    char text[16];
    std::snprintf(text, sizeof(text), "0x%08x", static_cast<unsigned>(status));
    return text;
}

Bstr Reason() {
    Bstr reason;
    CPComPtr<IErrorInfo> error;
    if (GetErrorInfo(0, error.put()) == S_OK) error->GetDescription(reason.put());
    return reason;
}

void Check(HRESULT status, const char* operation) {
    if (SUCCEEDED(status)) return;
    const Bstr reason = Reason();
    throw std::runtime_error(std::string(operation) + " failed with " + Hex(status) +
                             (reason ? ": " + Shown(reason) : ""));
}

std::string Shown(const Bstr& text) {
    if (!text) return "(null)";
    const int units = static_cast<int>(text.length());
    if (units == 0) return {};
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, text.get(), units, nullptr, 0, nullptr, nullptr);
    std::string shown(static_cast<std::size_t>(bytes), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.get(), units, shown.data(), bytes, nullptr, nullptr);
    return shown;
}

Bstr ElementText(const Bstr& document, std::basic_string_view<OLECHAR> name) {
    using Text = std::basic_string<OLECHAR>;
    const Text opening = OLESTR("<") + Text(name) + OLESTR(">");
    const std::size_t tag = document.view().find(opening);
    if (tag == Text::npos) return {};
    const std::size_t start = tag + opening.size();
    const std::size_t end = document.view().find(OLESTR("</"), start);
    return end == Text::npos ? Bstr() : Bstr(document.view().substr(start, end - start));
}

}  // namespace sample
