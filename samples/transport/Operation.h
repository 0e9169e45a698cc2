// What every operation of the job-control object goes through.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <exception>
#include <string_view>

#include "wncom/Logging.h"

namespace sample {

// Puts a text (UTF-8) into the client's exception slot as a new BSTR, which the client frees. Without a slot the
// client wants none. When memory runs out the slot stays null: the failure itself is told all the same.
void StoreText(BSTR* slot, std::string_view text) noexcept;

// A text (UTF-8) as UTF-16 from malloc, as the agent frees it; null when memory runs out.
WCHAR* MallocText(std::string_view text) noexcept;

// Runs an operation and lets no exception out of the library: the bridge would catch it, but only where both were
// made by the same compiler and share its run-time library. The log tells what happened, the slot tells the client,
// and the bridge gets the empty result, which means that nothing came back.
template <class Body>
auto Answered(const char* operation, BSTR* exceptionSlot, Body body) -> decltype(body()) {
    try {
        return body();
    } catch (const std::exception& failure) {
        wncom::Log(1, "SampleJobControl::%s failed: %s\n", operation, failure.what());
        StoreText(exceptionSlot, failure.what());
        return decltype(body())();
    }
}

}  // namespace sample
