// What clients ask of the device data, and what they are told about it.
#pragma once

#include <string>
#include <vector>

namespace wndevice {

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

// Both throw std::invalid_argument with a reason when the text is no such document.
DataRequest ParseDataRequest(const std::string& text);
SetDocument ParseSetDocument(const std::string& text);

std::string FailureDetails(const std::vector<SetFailure>& failures);

}  // namespace wndevice
