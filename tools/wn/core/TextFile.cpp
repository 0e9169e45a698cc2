#include "tools/wn/core/TextFile.h"

#include <windows.h>

#include <cstdint>

#include "common/Owned.h"
#include "components/Problem.h"
#include "components/xml/XmlParse.h"
#include "tools/wn/core/CommandError.h"
#include "tools/wn/core/InputFile.h"
#include "tools/wn/core/Texts.h"

namespace wn {
namespace {

constexpr std::uint64_t kLargestDocument = 64U << 20;  // bytes

}  // namespace

wncom::Bstr ReadDocument(const std::string& path) {
    InputFile file(path);
    std::string text = file.ReadAll(kLargestDocument);
    if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
    if (text.empty()) throw WrongInput(file.name() + " is empty: it must be an XML document");
    if (text.find('\0') != std::string::npos) {
        throw WrongInput(file.name() + " holds a zero byte: it must be an XML document in UTF-8");
    }
    wncom::Bstr wide = FromUtf8(text, file.name());
    try {
        pugi::xml_document document;
        wncom::components::ParseXml(text, document);
    } catch (const wncom::components::Problem& problem) {
        throw WrongInput(file.name() + " is not a well-formed XML document: " + problem.what());
    }
    return wide;
}

void WriteTextFile(const std::string& path, const std::string& text) {
    const wncom::OwnedHandle file(CreateFileW(FromUtf8(path, "The path").get(), GENERIC_WRITE, 0, nullptr,
                                              CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    DWORD written = 0;
    const bool whole = file &&
                       WriteFile(file.get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr) &&
                       written == text.size();
    if (!whole) throw CommandError("Cannot write " + path + ": " + ErrorText(GetLastError()));
}

}  // namespace wn
