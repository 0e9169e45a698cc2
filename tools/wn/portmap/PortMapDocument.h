// The port map's file, as a person wrote it, comments and all.
#pragma once

#include <windows.h>

#include <pugixml.hpp>
#include <string>

#include "common/Owned.h"

namespace wn {

// Where the port map is, in UTF-8: the configured file, else "portmap.xml" in the Windows directory.
std::string PortMapPath();
// Keeps it in this file from now on.
void SetPortMapPath(const std::string& path);

// Throws CommandError unless the file is a port map.
void RequirePortMap(const std::string& path);

// The document of the file; a missing file is an empty port map. It is held to the same rules as by the port map
// component, when it is read and before it is written, so that a command neither hides a slip nor makes one. Failures
// throw CommandError.
class PortMapDocument {
public:
    enum class Use { Read, Change };
    // For a change it waits up to ten seconds for another wn that is changing the file, and keeps others waiting.
    explicit PortMapDocument(Use use);
    PortMapDocument(const PortMapDocument&) = delete;
    PortMapDocument& operator=(const PortMapDocument&) = delete;
    ~PortMapDocument();

    pugi::xml_node Root() const { return m_document.child("portmap"); }
    const std::string& path() const { return m_path; }
    // The file holds the old or the new text at every moment.
    void Save();

private:
    wncom::OwnedHandle m_change;  // a mutex, while the file is being changed
    std::string m_path;
    pugi::xml_document m_document;
};

}  // namespace wn
