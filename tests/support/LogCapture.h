// What the code under test logged. For programs that link the logger.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "wncom/Logging.h"

namespace wncom::test {

// Configures logging to a file of the home, for every component, and holds a reference to this program's logger
// while it lives. Modules with a logger of their own write to the same file once they start it.
class LogCapture {
public:
    explicit LogCapture(int level = 8);
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;
    ~LogCapture();

    // The lines since the start or the last Clear, each as its level, a space and its message without the line's
    // end: "3 calling SubmitJob on mJobControl". Messages that contain the given text are left out.
    std::vector<std::string> Lines(std::string_view without = {}) const;
    // The same part of the log as it stands in the file.
    std::string Text() const;
    void Clear();

private:
    LogReference m_reference;
    std::string m_path;
    std::size_t m_start = 0;  // in bytes
};

// Whether the lines hold the wanted ones, whole, in this order, with any others between them.
testing::AssertionResult ContainsInOrder(const std::vector<std::string>& lines,
                                         const std::vector<std::string>& wanted);

}  // namespace wncom::test
