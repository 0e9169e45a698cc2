#include "wncom/TraceScope.h"

#include <objbase.h>

#include <iterator>

#include "wncom/Logging.h"

namespace wncom {
namespace {

constexpr std::uint8_t kTraceLevel = 5;

}  // namespace

TraceScope::TraceScope(const char* function, const char* file, int line) noexcept
    : m_function(function), m_file(file) {
    // Made whatever the level is: the exit may be logged where the entry was not.
    GUID id{};
    m_callId[0] = 0;
    CoCreateGuid(&id);
    StringFromGUID2(id, m_callId, static_cast<int>(std::size(m_callId)));
    WNCOM_LOG(kTraceLevel, "ENTER %s on line %d in file %s @%S@", m_function, line, m_file, m_callId);
}

TraceScope::~TraceScope() { WNCOM_LOG(kTraceLevel, "EXIT: %s @%S@", m_function, m_callId); }

}  // namespace wncom
