#include "tools/wn/core/CommandError.h"

#include <cstdio>
#include <nlohmann/json.hpp>

#include "tools/wn/core/Texts.h"

namespace wn {
namespace {

std::string SystemText(DWORD code) {
    char* text = nullptr;
    const DWORD length = FormatMessageA(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code,
        MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), reinterpret_cast<LPSTR>(&text), 0, nullptr);
    std::string result(text ? text : "", length);
    LocalFree(text);
    while (!result.empty() && (result.back() == '\n' || result.back() == '\r' || result.back() == '.')) {
        result.pop_back();
    }
    // The system's placeholder for a name that the message of wn has given already.
    if (const std::size_t insert = result.find("%1"); insert != std::string::npos) {
        result.replace(insert, 2, "the file");
    }
    return result.empty() ? "Unknown failure" : FromNarrow(result);
}

nlohmann::ordered_json OrNull(const std::string& text) {
    return text.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(text);
}

}  // namespace

std::string StatusNumber(HRESULT status) {
    char number[16];
    std::snprintf(number, sizeof(number), "0x%08X", static_cast<unsigned>(status));
    return number;
}

std::string StatusText(HRESULT status) {
    return SystemText(static_cast<DWORD>(status)) + " (" + StatusNumber(status) + ")";
}

std::string ErrorText(DWORD code) { return SystemText(code) + " (" + std::to_string(code) + ")"; }

void PrintFailure(const CommandError& error, bool json) {
    const Explanation& more = error.explanation();
    const std::string status = more.status ? StatusNumber(*more.status) : "";
    std::string text;
    if (json) {
        const nlohmann::ordered_json object = {{"error", error.what()},
                                               {"status", OrNull(status)},
                                               {"reason", OrNull(more.reason)},
                                               {"hint", OrNull(more.hint)}};
        text = object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
    } else {
        text = "wn: " + Printable(error.what() + (status.empty() ? "" : " (" + status + ")")) + "\n";
        for (const std::string& line : {more.reason, more.hint}) {
            if (!line.empty()) text += "    " + Printable(line) + "\n";
        }
    }
    std::fputs(text.c_str(), stderr);
}

}  // namespace wn
