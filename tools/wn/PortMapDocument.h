// The port map's file, as a person wrote it, comments and all.
#pragma once

#include <windows.h>

#include <memory>
#include <pugixml.hpp>
#include <string>

namespace wn {

// Where the port map is, in UTF-8: the configured file, else "portmap.xml" in the Windows directory.
std::string PortMapPath();
// Keeps it in this file from now on.
void SetPortMapPath(const std::string& path);

// The document of the file; a missing file is an empty port map. It is held to the same rules as by the port map
// component, when it is read and before it is written, so that a command neither hides a slip nor makes one. Failures
// throw CommandError.
class PortMapDocument {
public:
    enum class Use { Read, Change };
    // For a change it waits up to ten seconds for another wn that is changing the file, and keeps others waiting.
    explicit PortMapDocument(Use use);

    pugi::xml_node Root() const { return m_document.child("portmap"); }
    const std::string& path() const { return m_path; }
    // The file holds the old or the new text at every moment.
    void Save();

private:
    struct EndChange {
        void operator()(HANDLE mutex) const;
    };
    std::unique_ptr<void, EndChange> m_change;
    std::string m_path;
    pugi::xml_document m_document;
};

}  // namespace wn
