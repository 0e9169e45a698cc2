// COM on the calling thread, for as long as the object lives.
#pragma once

#include <windows.h>

#include <ole2.h>

#include "tools/wn/core/CommandError.h"

namespace wn {

class ComSession {
public:
    ComSession() {
        if (const HRESULT status = CoInitialize(nullptr); FAILED(status)) {
            throw CommandError("Cannot start COM", {.reason = StatusText(status), .status = status});
        }
    }
    ComSession(const ComSession&) = delete;
    ComSession& operator=(const ComSession&) = delete;
    ~ComSession() { CoUninitialize(); }
};

}  // namespace wn
