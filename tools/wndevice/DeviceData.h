// The device data document: status, trays and counters, with values that clients read by path and set.
#pragma once

#include <atomic>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "tools/wndevice/xml/Documents.h"
#include "tools/wndevice/xml/Xml.h"

namespace wndevice {

// Kept in the store's device-data.xml, which is made with its first content when absent. Clients change values, never
// the structure; what stands under an element with readOnly="true" only the device changes. Any thread may call.
class DeviceData {
public:
    // Throws std::runtime_error when the file cannot be used; a damaged one is left as it is.
    explicit DeviceData(const std::filesystem::path& folder);

    // A result document with a copy of each selected element, or the value of what is no element; nothing when the
    // path selects nothing. Throws std::invalid_argument as XmlPaths does.
    std::optional<std::string> Read(const DataRequest& request) const;

    // Sets all values of the document and stores them, or none: then the failures tell why. Throws
    // std::invalid_argument for bad prefixes and std::runtime_error when the file cannot be written; nothing is set
    // then either.
    std::vector<SetFailure> Write(const SetDocument& document);

    // Sets one of the counters, by its element's name. Not stored: the service counts anew when it starts.
    void SetCounter(const char* name, std::size_t value);

    // Requests that still wait for their turn fail: each may take a second.
    void Close() noexcept { m_closed = true; }

private:
    void RequireOpen() const;
    void Save(xmlDoc& document) const;

    std::filesystem::path m_file;
    std::atomic<bool> m_closed = false;
    mutable std::mutex m_lock;
    XmlDocument m_document;
};

}  // namespace wndevice
