// The operations on device data.
#include "tools/wndevice/DataDocuments.h"
#include "tools/wndevice/DeviceService.h"
#include "tools/wndevice/RequestBody.h"

namespace wndevice {

using httplib::Request;
using httplib::Response;

void DeviceService::AddDataRoutes() {
    m_server.Post("/device-data/read", ServeDocument("read", Caller::InSession,
                                                     [this](const Request& r, Response& a) { ReadData(r, a); }));
    m_server.Post("/device-data/write", ServeDocument("write", Caller::InSession,
                                                      [this](const Request& r, Response& a) { WriteData(r, a); }));
}

void DeviceService::ReadData(const Request& request, Response& answer) const {
    const auto result = m_data.Read(ParseDataRequest(request.body));
    if (!result) return Tell(answer, 404, "The path selects nothing");
    TellXml(answer, 200, *result);
}

void DeviceService::WriteData(const Request& request, Response& answer) {
    const SetDocument document = ParseSetDocument(request.body);
    const std::vector<SetFailure> failures = m_data.Write(document);
    if (failures.empty()) {
        for (const DataChange& change : document.changes) {
            m_subscriptions.Publish({"deviceDataChanged", {{"path", change.path}, {"value", change.value}}});
        }
        return Tell(answer, 200, "The values are set");
    }
    if (request.get_header_value("Failure-Details") == "yes") {
        return TellXml(answer, 422, FailureDetails(failures));
    }
    Tell(answer, 422,
         "No value is set: " + std::to_string(failures.size()) + " of " + std::to_string(document.changes.size()) +
             " cannot be");
}

}  // namespace wndevice
