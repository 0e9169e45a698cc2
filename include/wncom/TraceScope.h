// The ENTER and EXIT lines of one call.
#pragma once

#include <windows.h>

namespace wncom {

// Declared on the stack as a traced function's first statement: logs the entry and, on every way out, the exit, both
// at level 5 and with the same identifier, so that the lines of one call are found among those of other threads and
// processes. Belongs to the calling thread.
class TraceScope {
public:
    // The names (class, "::", method; the class's file) are kept as pointers: literals. The line is the caller's own
    // unless it is given.
    TraceScope(const char* function, const char* file, int line = __builtin_LINE()) noexcept;
    TraceScope(const TraceScope&) = delete;
    TraceScope& operator=(const TraceScope&) = delete;
    ~TraceScope();

private:
    const char* m_function;
    const char* m_file;
    OLECHAR m_callId[255];
};

}  // namespace wncom
