#include "bridge/RemoteCall.h"

#include <new>

#include "bridge/TextConversions.h"

namespace wncom {
namespace {

constexpr std::size_t kTooBigToLog = kTraceSize - 100;  // room for what stands around the answer

MallocText<WCHAR> Convert(const CString& answer, const char* nothing) noexcept {
    MallocText<WCHAR> text = answer.empty() ? nullptr : CStringToWChar(answer);
    if (!text) Log(2, nothing);
    return text;
}

}  // namespace

CString OutgoingText(const WCHAR* text) {
    const MallocText<char> encoded = WCharToUtf8(text);
    // An empty text must not be sent in the place of one that memory was too short for.
    if (text && !encoded) throw std::bad_alloc();
    return CharToCString(encoded.get());
}

LONG HandOut(const CString& answer, MallocText<WCHAR>* slot, const char* nothing) noexcept {
    MallocText<WCHAR> text = Convert(answer, nothing);
    if (!text) return 0;
    *slot = std::move(text);
    return static_cast<LONG>(answer.length());
}

LONG HandOutLogged(const CString& answer, MallocText<WCHAR>* slot) noexcept {
    const LONG length = HandOut(answer, slot);
    if (length != 0) {
        const bool fits = answer.length() < kTooBigToLog;
        Log(3, "result (%lu): --%s--\n", length, fits ? answer.c_str() : "(too big to log)");
    }
    return length;
}

}  // namespace wncom
