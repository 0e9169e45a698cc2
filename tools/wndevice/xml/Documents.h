// The XML documents about jobs and device data.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/wndevice/xml/Xml.h"

namespace wndevice {

// The workflow id that a capabilities request asks about. Throws std::invalid_argument when the document is none.
std::string WorkflowOfRequest(const xmlDoc& request);
// The job's name in an intent ticket; empty when it has none that could be told to others.
std::string JobNameOf(const xmlDoc& ticket);

std::string CapabilitiesTicket(const std::string& deviceName, const std::string& workflowId);
std::string ResponseTicket(const std::string& jobId, const std::string& dataAddress, const std::string& jobAddress);
// bytes: the length of the delivered data; nothing while it is awaited.
std::string JobState(const std::string& jobId, std::optional<std::uintmax_t> bytes);

struct DataRequest {
    std::string path;
    std::string prefixes;
};

struct DataChange {
    std::string path;
    std::string value;
};

struct SetDocument {
    std::string prefixes;
    std::vector<DataChange> changes;
};

struct SetFailure {
    std::string path;
    std::string reason;
};

// Both throw std::invalid_argument with a reason when the document is not of that kind.
DataRequest ParseDataRequest(const xmlDoc& document);
SetDocument ParseSetDocument(const xmlDoc& document);

std::string FailureDetails(const std::vector<SetFailure>& failures);

}  // namespace wndevice
