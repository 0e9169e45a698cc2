#include "libraries/http/FailureReason.h"

#include <windows.h>

#include <oleauto.h>

#include <new>

#include "common/CodePageText.h"
#include "libraries/http/shared/OneLine.h"
#include "wncom/CPComPtr.h"

namespace wncom::http {
namespace {

constexpr std::size_t kLongestReason = 1000;  // bytes

}  // namespace

void SetFailureReason(std::string_view reason) noexcept {
    if (reason.empty()) {
        SetErrorInfo(0, nullptr);
        return;
    }
    try {
        const Bstr text = WidenToBstr(CP_UTF8, OneLine(reason, kLongestReason));
        const Bstr source = WidenToBstr(CP_UTF8, "wnHttpTransport");
        CPComPtr<ICreateErrorInfo> info;
        CPComPtr<IErrorInfo> error;
        if (FAILED(CreateErrorInfo(info.put())) || FAILED(info->SetDescription(text.get()))) return;
        info->SetSource(source.get());
        if (SUCCEEDED(info->QueryInterface(IID_IErrorInfo, error.put_void()))) SetErrorInfo(0, error.get());
    } catch (const std::bad_alloc&) {
        // The client learns of the failure all the same.
    }
}

}  // namespace wncom::http
