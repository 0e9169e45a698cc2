#include "tools/wn/portmap/PortMapDocument.h"

#include <sstream>

#include "components/Problem.h"
#include "components/portmap/PortMapData.h"
#include "components/xml/XmlSource.h"
#include "tools/wn/core/CommandError.h"
#include "tools/wn/core/InputFile.h"
#include "tools/wn/core/Paths.h"
#include "tools/wn/core/Texts.h"
#include "tools/wn/settings/RegistryKey.h"

namespace wn {
namespace {

using wncom::components::DecodeXmlFile;
using wncom::components::kXmlLimit;
using wncom::components::ParsePortMap;
using wncom::components::Problem;

constexpr const char* kFileValue = "portmapfile";
constexpr std::size_t kLongestPath = 1023;  // bytes; what the port map reads
constexpr DWORD kLongestWait = 10'000;      // milliseconds

wncom::OwnedHandle BeginChange() {
    wncom::OwnedHandle mutex(CreateMutexA(nullptr, FALSE, "QBNorvelPortMapChange"));
    if (!mutex) throw CommandError("Cannot create the mutex of the port map: " + ErrorText(GetLastError()));
    const DWORD outcome = WaitForSingleObject(mutex.get(), kLongestWait);
    if (outcome == WAIT_OBJECT_0 || outcome == WAIT_ABANDONED) return mutex;
    throw CommandError("Another wn has been changing the port map for ten seconds",
                       {.hint = "Try again when it has ended"});
}

std::string ReadText(const std::string& path) {
    try {
        std::string text = DecodeXmlFile(InputFile(path).ReadAll(kXmlLimit));
        ParsePortMap(text);
        return text;
    } catch (const Problem& problem) {
        throw CommandError("The port map " + path + " is damaged",
                           {.reason = problem.what(), .hint = "Correct it in a text editor, then try again"});
    }
}

void WriteText(const std::string& path, const std::string& text) {
    const std::string target = NarrowPath(path);
    const std::string temporary = target + ".new";
    const auto fail = [&](const std::string& what, DWORD error) {
        DeleteFileA(temporary.c_str());
        throw CommandError(what + ": " + ErrorText(error), {.hint = "The port map was not changed"});
    };
    wncom::OwnedHandle file(
        CreateFileA(temporary.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    DWORD written = 0;
    if (!file || !WriteFile(file.get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr) ||
        written != text.size()) {
        const DWORD error = GetLastError();
        file.reset();
        fail("Cannot write " + path + ".new", error);
    }
    file.reset();
    if (!MoveFileExA(temporary.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING)) {
        fail("Cannot replace " + path, GetLastError());
    }
}

}  // namespace

std::string PortMapPath() {
    if (const auto configured = kPortMapKey.Read(kFileValue); configured && !configured->empty()) return *configured;
    return InWindowsDirectory("portmap.xml");
}

void SetPortMapPath(const std::string& path) {
    if (NarrowPath(path).size() > kLongestPath) {
        throw WrongInput("The path is longer than " + std::to_string(kLongestPath) + " bytes: " + path);
    }
    kPortMapKey.Write(kFileValue, path);
}

void RequirePortMap(const std::string& path) { ReadText(path); }

PortMapDocument::PortMapDocument(Use use) : m_path(PortMapPath()) {
    if (use == Use::Change) m_change = BeginChange();
    if (Exists(m_path)) {
        const std::string text = ReadText(m_path);
        m_document.load_buffer(text.data(), text.size(), pugi::parse_full, pugi::encoding_utf8);
    }
    if (!Root()) m_document.append_child("portmap");
}

PortMapDocument::~PortMapDocument() {
    if (m_change) ReleaseMutex(m_change.get());
}

void PortMapDocument::Save() {
    // Whatever it was read as, it is written in UTF-8.
    for (const pugi::xml_node node : m_document) {
        if (node.type() == pugi::node_declaration) node.attribute("encoding").set_value("UTF-8");
    }
    std::ostringstream stream;
    m_document.save(stream, "  ", pugi::format_default, pugi::encoding_utf8);
    const std::string text = stream.str();
    if (text.size() > kXmlLimit) throw CommandError("The port map would be larger than 64 MB");
    try {
        ParsePortMap(text);
    } catch (const Problem& problem) {
        throw WrongInput(std::string("A port map cannot hold this: ") + problem.what());
    }
    WriteText(m_path, text);
}

}  // namespace wn
