#include "samples/transport/Operation.h"

#include <cstdlib>
#include <cstring>

#include "samples/transport/Texts.h"
#include "wncom/CPComPtr.h"
#include "wncom/Logging.h"

namespace sample {
namespace {

// Scripts read it as Err.Description or error.description.
void SetReason(std::basic_string<WCHAR> reason) {
    wncom::CPComPtr<ICreateErrorInfo> error;
    wncom::CPComPtr<IErrorInfo> info;
    if (FAILED(CreateErrorInfo(error.put()))) return;
    error->SetDescription(reason.data());
    if (SUCCEEDED(error->QueryInterface(IID_IErrorInfo, info.put_void()))) SetErrorInfo(0, info.get());
}

}  // namespace

void Tell(const char* operation, BSTR* exceptionSlot, std::string_view reason) noexcept {
    try {
        const std::string text(reason);
        wncom::Log(1, "SampleJobControl::%s failed: %s\n", operation, text.c_str());
        SetReason(Widened(reason));
        if (exceptionSlot) *exceptionSlot = SysAllocString(Widened(reason).c_str());
    } catch (...) {
        // Out of memory: the empty result tells of the failure all the same.
    }
}

WCHAR* MallocText(std::string_view text) noexcept {
    try {
        const std::basic_string<WCHAR> wide = Widened(text);
        const std::size_t bytes = (wide.size() + 1) * sizeof(WCHAR);
        void* const memory = std::malloc(bytes);
        return memory ? static_cast<WCHAR*>(std::memcpy(memory, wide.c_str(), bytes)) : nullptr;
    } catch (...) {
        return nullptr;
    }
}

}  // namespace sample
