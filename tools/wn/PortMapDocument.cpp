#include "tools/wn/PortMapDocument.h"

#include <sstream>

#include "components/Problem.h"
#include "components/portmap/PortMapData.h"
#include "components/xml/XmlSource.h"
#include "tools/wn/Command.h"
#include "tools/wn/InputFile.h"
#include "tools/wn/Paths.h"
#include "tools/wn/RegistryKey.h"
#include "tools/wn/Texts.h"

namespace wn {
namespace {

using wncom::components::DecodeXmlFile;
using wncom::components::kXmlLimit;
using wncom::components::ParsePortMap;
using wncom::components::Problem;

constexpr const char* kFileValue = "portmapfile";
constexpr std::size_t kLongestPath = 1023;  // bytes; what the port map reads
constexpr DWORD kLongestWait = 10'000;      // milliseconds

HANDLE BeginChange() {
    const HANDLE mutex = CreateMutexA(nullptr, FALSE, "QBNorvelPortMapChange");
    if (!mutex) throw CommandError("Cannot make the mutex of the port map: " + ErrorText(GetLastError()));
    const DWORD outcome = WaitForSingleObject(mutex, kLongestWait);
    if (outcome == WAIT_OBJECT_0 || outcome == WAIT_ABANDONED) return mutex;
    CloseHandle(mutex);
    throw CommandError("Another wn has been changing the port map for ten seconds. Try again when it is done");
}

std::string ReadText(const std::string& path) {
    try {
        std::string text = DecodeXmlFile(InputFile(path).ReadAll(kXmlLimit));
        ParsePortMap(text);
        return text;
    } catch (const Problem& problem) {
        throw CommandError(path + " is damaged: " + problem.what() + ". Mend it with a text editor first");
    }
}

void WriteText(const std::string& path, const std::string& text) {
    const std::string target = NarrowPath(path);
    const std::string temporary = target + ".new";
    const auto fail = [&](const std::string& what) {
        const DWORD error = GetLastError();
        DeleteFileA(temporary.c_str());
        throw CommandError(what + ": " + ErrorText(error) + ". The port map is as it was");
    };
    const HANDLE file =
        CreateFileA(temporary.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) fail("Cannot write " + path + ".new");
    DWORD written = 0;
    const bool whole =
        WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr) && written == text.size();
    const DWORD error = GetLastError();
    CloseHandle(file);
    SetLastError(error);
    if (!whole) fail("Cannot write " + path + ".new");
    if (!MoveFileExA(temporary.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING)) fail("Cannot replace " + path);
}

}  // namespace

std::string PortMapPath() {
    if (const auto configured = kPortMapKey.Read(kFileValue); configured && !configured->empty()) return *configured;
    return InWindowsDirectory("portmap.xml");
}

void SetPortMapPath(const std::string& path) {
    if (NarrowPath(path).size() > kLongestPath) {
        throw CommandError("The path is longer than " + std::to_string(kLongestPath) + " bytes: " + path);
    }
    kPortMapKey.Write(kFileValue, path);
}

void PortMapDocument::EndChange::operator()(HANDLE mutex) const {
    ReleaseMutex(mutex);
    CloseHandle(mutex);
}

PortMapDocument::PortMapDocument(Use use)
    : m_change(use == Use::Change ? BeginChange() : nullptr), m_path(PortMapPath()) {
    if (Exists(m_path)) {
        const std::string text = ReadText(m_path);
        m_document.load_buffer(text.data(), text.size(), pugi::parse_full, pugi::encoding_utf8);
    }
    if (!Root()) m_document.append_child("portmap");
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
        throw CommandError(std::string("This cannot stand in a port map: ") + problem.what());
    }
    WriteText(m_path, text);
}

}  // namespace wn
