#include "tools/wndevice/Documents.h"

#include <pugixml.hpp>

#include "tools/wndevice/EventKinds.h"
#include "tools/wndevice/XmlWriter.h"

namespace wndevice {

std::string FaultOfXml(const std::string& text) {
    pugi::xml_document document;
    const pugi::xml_parse_result parsed = document.load_buffer(text.data(), text.size());
    if (!parsed) return std::string(parsed.description()) + " at byte " + std::to_string(parsed.offset);
    int roots = 0;
    for (const pugi::xml_node node : document.children()) roots += node.type() == pugi::node_element ? 1 : 0;
    return roots == 1 ? std::string() : "More than one root element";
}

std::optional<std::string> WorkflowOfRequest(const std::string& request) {
    pugi::xml_document document;
    if (!document.load_buffer(request.data(), request.size())) return {};
    const pugi::xml_node id = document.child("capabilitiesRequest").child("workflowId");
    if (!id) return {};
    return id.text().get();
}

std::string CapabilitiesTicket(const std::string& deviceName, const std::string& workflowId) {
    XmlWriter document("capabilities");
    AddText(document.root, "deviceName", deviceName);
    pugi::xml_node workflow = document.root.append_child("workflow");
    AddText(workflow, "workflowId", workflowId.empty() ? "production" : workflowId);
    AddText(workflow, "dataDelivery", "post");
    pugi::xml_node colours = workflow.append_child("colourModes");
    for (const char* mode : {"colour", "monochrome"}) AddText(colours, "mode", mode);
    pugi::xml_node media = workflow.append_child("media");
    for (const char* size : {"A4", "A3", "SRA3"}) AddText(media, "size", size);
    pugi::xml_node events = document.root.append_child("events");
    for (const EventKind& kind : EventKinds()) AddText(events, "event", kind.name);
    return document.Text();
}

std::string ResponseTicket(const std::string& jobId, const std::string& dataAddress, const std::string& jobAddress) {
    XmlWriter document("submitResponse");
    AddText(document.root, "JobId", jobId);
    AddText(document.root, "PostURI", dataAddress);
    AddText(document.root, "JobUri", jobAddress);
    return document.Text();
}

std::string JobState(const std::string& jobId, std::optional<std::uintmax_t> bytes) {
    XmlWriter document("job");
    AddText(document.root, "JobId", jobId);
    AddText(document.root, "state", bytes ? "complete" : "waitingForData");
    if (bytes) AddText(document.root, "dataBytes", std::to_string(*bytes));
    return document.Text();
}

}  // namespace wndevice
