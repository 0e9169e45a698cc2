// What the operations of the remote job-control object have in common.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <exception>
#include <string>
#include <string_view>

#include "libraries/http/FailureReason.h"
#include "libraries/http/HttpClient.h"
#include "wncom/Logging.h"

namespace wncom::http {

// Whether a text may stand in headers and paths as it is: 1 to 128 characters out of letters, digits, "-" and "_".
// Session ids, subscription ids and the names of events and properties are of this form.
bool IsPlainId(std::string_view text) noexcept;

// A new header for each request that makes something at the device: when the connection breaks after the device took
// it, libcurl may send it once more, and the device must know it again. Throws std::runtime_error.
std::string RequestIdHeader();

// Puts a text, given in UTF-8, into the caller's slot, as a BSTR or from malloc: the caller frees it. Nothing happens
// without a slot or without a text, and when memory runs out the slot stays null.
void StoreText(BSTR* slot, std::string_view text) noexcept;
struct MallocSlot {
    WCHAR** place;
};
void StoreText(MallocSlot slot, std::string_view text) noexcept;

// Runs an operation's body. Why it fails is logged and left for the client here, because the caller catches it
// unexamined; a reason that an earlier operation left is gone.
template <class Body>
auto Logged(const char* operation, Body body) {
    SetFailureReason({});
    try {
        return body();
    } catch (const std::exception& failure) {
        Log(1, "HttpJobControl::%s failed: %s", operation, failure.what());
        SetFailureReason(failure.what());
        throw;
    }
}

// Likewise for an operation with a slot, which receives the device's words, or what went wrong without them. A
// refusal gives the empty result of the body's type.
template <class Slot, class Body>
auto Answered(const char* operation, Slot slot, Body body) -> decltype(body()) {
    try {
        return Logged(operation, body);
    } catch (const Refusal& refusal) {
        StoreText(slot, refusal.Text().empty() ? refusal.what() : refusal.Text());
        return {};
    } catch (const std::exception& failure) {
        StoreText(slot, failure.what());
        throw;
    }
}

}  // namespace wncom::http
