// The XML documents that the service reads and writes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace wndevice {

// Why a text is no well-formed XML document with one root element; empty when it is one.
std::string FaultOfXml(const std::string& text);

// The workflow id that a capabilities request asks about; nothing when the text is no such request.
std::optional<std::string> WorkflowOfRequest(const std::string& request);

std::string CapabilitiesTicket(const std::string& deviceName, const std::string& workflowId);
std::string ResponseTicket(const std::string& jobId, const std::string& dataAddress, const std::string& jobAddress);
// bytes: the length of the delivered data; nothing while it is awaited.
std::string JobState(const std::string& jobId, std::optional<std::uintmax_t> bytes);

}  // namespace wndevice
