#include "tools/wn/TextFile.h"

#include <windows.h>

#include <cstdint>

#include "components/Problem.h"
#include "components/xml/XmlParse.h"
#include "tools/wn/Command.h"
#include "tools/wn/InputFile.h"
#include "tools/wn/Texts.h"

namespace wn {
namespace {

constexpr std::uint64_t kLargestTicket = 64U << 20;  // bytes

std::string ReadText(const std::string& path) {
    std::string text = InputFile(path).ReadAll(kLargestTicket);
    if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
    if (text.empty()) throw CommandError(path + " is empty: a ticket is an XML document");
    // The service would be sent what stands before it only.
    if (text.find('\0') != std::string::npos) throw CommandError(path + " holds a zero byte: a ticket is text");
    return text;
}

}  // namespace

wncom::Bstr ReadTicket(const std::string& path) { return FromUtf8(ReadText(path), path); }

wncom::Bstr ReadDocument(const std::string& path) {
    const std::string text = ReadText(path);
    wncom::Bstr wide = FromUtf8(text, path);
    try {
        pugi::xml_document document;
        wncom::components::ParseXml(text, document);
    } catch (const wncom::components::Problem& problem) {
        throw CommandError(path + " is no XML document: " + problem.what());
    }
    return wide;
}

void WriteTextFile(const std::string& path, const std::string& text) {
    const HANDLE file = CreateFileW(FromUtf8(path, "The path").get(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) throw CommandError("Cannot write " + path + ": " + ErrorText(GetLastError()));
    DWORD written = 0;
    const bool whole =
        WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr) && written == text.size();
    const DWORD error = GetLastError();
    CloseHandle(file);
    if (!whole) throw CommandError("Cannot write " + path + ": " + ErrorText(error));
}

}  // namespace wn
