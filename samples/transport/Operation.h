// What every operation of the job-control object goes through.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <exception>
#include <string_view>

namespace sample {

// Tells the log, COM's error object of the thread, and the client's exception slot, if there is one, why an operation
// failed. The text is UTF-8.
void Tell(const char* operation, BSTR* exceptionSlot, std::string_view reason) noexcept;

// A text (UTF-8) as UTF-16 from malloc, which the agent frees; null when memory runs out.
WCHAR* MallocText(std::string_view text) noexcept;

// Runs an operation and lets no exception out of the library, whoever threw it: on 32-bit Windows it may end the
// process. The agent gets the empty result, which means that nothing came back.
template <class Body>
auto Answered(const char* operation, BSTR* exceptionSlot, Body body) noexcept -> decltype(body()) {
    // An old reason must not be read as this operation's.
    SetErrorInfo(0, nullptr);
    try {
        return body();
    } catch (const std::exception& failure) {
        Tell(operation, exceptionSlot, failure.what());
    } catch (...) {
        Tell(operation, exceptionSlot, "unknown exception");
    }
    return decltype(body())();
}

}  // namespace sample
