// COM on the calling thread, for as long as the object lives.
#pragma once

#include <windows.h>

#include <ole2.h>

#include "tools/wn/Command.h"

namespace wn {

class ComSession {
public:
    ComSession() {
        if (const HRESULT status = CoInitialize(nullptr); FAILED(status)) {
            throw CommandError("Cannot start COM: " + StatusText(status));
        }
    }
    ComSession(const ComSession&) = delete;
    ComSession& operator=(const ComSession&) = delete;
    ~ComSession() { CoUninitialize(); }
};

}  // namespace wn
