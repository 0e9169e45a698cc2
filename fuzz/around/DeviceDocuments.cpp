// Documents that clients send to the device service: each is refused with a reason or read, and what the device
// answers from them is well-formed.
#include <stdexcept>

#include "fuzz/support/Fuzz.h"
#include "tools/wndevice/events/Events.h"
#include "tools/wndevice/events/Subscription.h"
#include "tools/wndevice/xml/Documents.h"

using namespace wndevice;

namespace {

template <class Read>
void Try(Read read) {
    try {
        read();
    } catch (const std::invalid_argument& error) {
        wncom::fuzz::Expect(error.what()[0] != '\0', "a refusal has a reason");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    XmlDocument document;
    Try([&] { document = ParseXml(std::string(wncom::fuzz::View(data, size))); });
    if (!document) return 0;
    Try([&] { ParseXml(CapabilitiesTicket("device", WorkflowOfRequest(*document))); });
    Try([&] { ParseDataRequest(*document); });
    Try([&] { ParseRenewal(*document); });
    Try([&] { ParseSubscriptionParts(*document); });
    std::vector<SetFailure> failures;
    Try([&] {
        for (const DataChange& change : ParseSetDocument(*document).changes) {
            failures.push_back({change.path, change.value});
        }
    });
    std::string cookie;
    Try([&] { cookie = ParseSubscriptionTicket(*document).cookie; });
    // These throw for no answer of the device.
    ParseXml(FailureDetails(failures));
    ParseXml(EventDocument("id", 1, cookie, {"JobAccepted", {{"Name", JobNameOf(*document)}}}));
    return 0;
}
