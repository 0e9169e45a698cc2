// The operations on events and subscriptions.
#include <memory>

#include "samples/transport/Operation.h"
#include "samples/transport/SampleJobControl.h"
#include "wncom/RemoteArray.h"

namespace sample {

using wncom::CString;
using wncom::RemoteArray;

namespace {

// The list is made with new and its elements with new[], for the bridge deletes it and it deletes them: library and
// agent share one allocator.
RemoteArray* NewList(const std::vector<std::string>& names) {
    auto list = std::make_unique<RemoteArray>();
    auto elements = std::make_unique<CString[]>(names.size());
    for (std::size_t i = 0; i < names.size(); ++i) elements[i] = CString(std::string_view(names[i]));
    list->Init(elements.release(), static_cast<LONG>(names.size()));
    return list.release();
}

}  // namespace

RemoteArray* SampleJobControl::GetSupportedEvents() {
    return Answered("GetSupportedEvents", nullptr, [] { return NewList(EventNames()); });
}

RemoteArray* SampleJobControl::GetEventProperties(CString eventName) {
    return Answered("GetEventProperties", nullptr, [&] { return NewList(PropertyNames(eventName)); });
}

// These three texts come in the narrow code page, not in UTF-8; this device looks at their ASCII only. It has no
// filters.
CString SampleJobControl::Subscribe(CString subscriptionInfo, CString, CString consumerInterface) {
    return Answered("Subscribe", nullptr, [&] {
        const std::string id = Connected().Subscribe(subscriptionInfo, consumerInterface);
        return CString(std::string_view(id));
    });
}

void SampleJobControl::Unsubscribe(CString subscriptionId) {
    Answered("Unsubscribe", nullptr, [&] { Connected().Unsubscribe(subscriptionId.c_str()); });
}

CString SampleJobControl::GetEventCapabilities(BSTR* exceptionSlot) {
    return Answered("GetEventCapabilities", exceptionSlot, [&] {
        const std::string ticket = Connected().EventCapabilities();
        return CString(std::string_view(ticket));
    });
}

CString SampleJobControl::SubscribeForEvents(CString subscriptionTicket, BSTR* exceptionSlot) {
    return Answered("SubscribeForEvents", exceptionSlot, [&] {
        const std::string result = Connected().SubscribeByTicket(subscriptionTicket);
        return CString(std::string_view(result));
    });
}

bool SampleJobControl::Resubscribe(CString subscriptionId, CString duration, BSTR* exceptionSlot) {
    return Answered("Resubscribe", exceptionSlot, [&] {
        Connected().Renew(subscriptionId.c_str(), duration);
        return true;
    });
}

bool SampleJobControl::UnsubscribeForEvents(CString subscriptionId, BSTR* exceptionSlot) {
    return Answered("UnsubscribeForEvents", exceptionSlot, [&] {
        Connected().Unsubscribe(subscriptionId.c_str());
        return true;
    });
}

}  // namespace sample
