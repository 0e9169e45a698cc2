#include "samples/transport/DataTable.h"

#include <stdexcept>
#include <utility>

#include "samples/transport/Texts.h"

namespace sample {
namespace {

constexpr std::size_t kLongestValue = 4096;  // bytes
constexpr const char* kJobs = "/device/jobs";

bool IsAtOrBelow(std::string_view path, std::string_view wanted) {
    return path == wanted || (path.starts_with(wanted) && path[wanted.size()] == '/');
}

}  // namespace

DataTable::DataTable() {
    m_values["/device/name"] = {"Sample device", true};
    m_values[kJobs] = {"0", true};
    m_values["/device/message"] = {"ready", false};
    m_values["/device/trays/1/sheets"] = {"500", false};
    m_values["/device/trays/2/sheets"] = {"250", false};
}

std::string DataTable::Read(std::string_view path) const {
    std::string values;
    for (const auto& [at, value] : m_values) {
        if (IsAtOrBelow(at, path)) values += "<value path=\"" + at + "\">" + AsciiXml(value.text) + "</value>";
    }
    if (values.empty()) throw std::runtime_error("There is no value at " + std::string(path));
    return Element("deviceData", values);
}

std::vector<DataTable::Failure> DataTable::Write(std::string_view setDocument, bool partly) {
    std::map<std::string, std::string> wanted;
    std::vector<Failure> failures;
    for (const std::string_view set : Elements(setDocument, "set")) {
        const std::string path(FirstElement(set, "path"));
        const std::string_view text = FirstElement(set, "value");
        const std::string obstacle = Obstacle(path, text);
        if (obstacle.empty()) {
            wanted[path] = text;
        } else {
            failures.push_back({path, obstacle});
        }
    }
    if (wanted.empty() && failures.empty()) throw std::runtime_error("The document sets nothing");
    if (failures.empty() || partly) {
        for (auto& [path, text] : wanted) m_values[path].text = std::move(text);
    }
    return failures;
}

void DataTable::SetJobs(int jobs) { m_values[kJobs].text = std::to_string(jobs); }

std::string DataTable::Obstacle(const std::string& path, std::string_view text) const {
    const auto place = m_values.find(path);
    if (place == m_values.end()) return "There is no such value";
    if (place->second.readOnly) return "The value is read-only";
    if (text.size() > kLongestValue) return "The value is too long";
    // The text goes back into a document as it came.
    if (text.find('<') != std::string_view::npos) return "The value holds elements";
    return {};
}

}  // namespace sample
