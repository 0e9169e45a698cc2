// The device's data: values under paths.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace sample {

// Not safe by itself: the device that owns it holds its lock.
class DataTable {
public:
    DataTable();

    // A document of the values at and below a path, in the order of their paths. Throws std::runtime_error when there
    // are none.
    std::string Read(std::string_view path) const;

    struct Failure {
        std::string path;
        std::string reason;
    };
    // Sets the values of a set document: all of them or, when one cannot be set, none. With partly, those that can be
    // set are. Gives the failures; throws std::runtime_error for a document that sets nothing.
    std::vector<Failure> Write(std::string_view setDocument, bool partly);

    // For the value that the device itself keeps.
    void SetJobs(int jobs);

private:
    struct Value {
        std::string text;  // as it stands in XML
        bool readOnly = false;
    };

    // Why the value cannot be set; empty when it can.
    std::string Obstacle(const std::string& path, std::string_view text) const;

    std::map<std::string, Value, std::less<>> m_values;  // by path
};

}  // namespace sample
