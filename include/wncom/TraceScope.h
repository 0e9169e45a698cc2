// The ENTER and EXIT lines of one call.
#pragma once

#include <windows.h>

namespace wncom {

// Declared on the stack as a traced function's first statement: logs the entry and, on every way out, the exit, both
// at level 5 and with the same identifier, so that the lines of one call are found among those of other threads and
// processes. Belongs to the calling thread.
class TraceScope {
public:
    // The names (class, "::", method; source file) are kept as pointers: literals.
    TraceScope(const char* function, const char* file, int line) noexcept;
    TraceScope(const TraceScope&) = delete;
    TraceScope& operator=(const TraceScope&) = delete;
    ~TraceScope();

private:
    const char* m_function;
    const char* m_file;
    OLECHAR m_callId[255];
};

// Traces the calling function from here on, with this line of this source file.
#define WNCOM_TRACE(function) const ::wncom::TraceScope traceScope((function), __FILE_NAME__, __LINE__)

}  // namespace wncom
