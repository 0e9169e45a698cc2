#include "tools/wndevice/Documents.h"

#include <pugixml.hpp>
#include <sstream>

namespace wndevice {
namespace {

// One child element with a text.
void Add(pugi::xml_node parent, const char* name, const std::string& text) {
    parent.append_child(name).text().set(text.c_str());
}

// A new document with its XML declaration; the caller fills its root element.
class Document {
public:
    explicit Document(const char* rootName) {
        pugi::xml_node declaration = m_document.append_child(pugi::node_declaration);
        declaration.append_attribute("version") = "1.0";
        declaration.append_attribute("encoding") = "UTF-8";
        root = m_document.append_child(rootName);
    }
    std::string Text() const {
        std::ostringstream text;
        m_document.save(text, "  ");
        return text.str();
    }

private:
    pugi::xml_document m_document;

public:
    pugi::xml_node root;
};

}  // namespace

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
    Document document("capabilities");
    Add(document.root, "deviceName", deviceName);
    pugi::xml_node workflow = document.root.append_child("workflow");
    Add(workflow, "workflowId", workflowId.empty() ? "production" : workflowId);
    Add(workflow, "dataDelivery", "post");
    pugi::xml_node colours = workflow.append_child("colourModes");
    for (const char* mode : {"colour", "monochrome"}) Add(colours, "mode", mode);
    pugi::xml_node media = workflow.append_child("media");
    for (const char* size : {"A4", "A3", "SRA3"}) Add(media, "size", size);
    pugi::xml_node events = document.root.append_child("events");
    for (const char* event : {"jobAccepted", "jobDataReceived"}) Add(events, "event", event);
    return document.Text();
}

std::string ResponseTicket(const std::string& jobId, const std::string& dataAddress, const std::string& jobAddress) {
    Document document("submitResponse");
    Add(document.root, "JobId", jobId);
    Add(document.root, "PostURI", dataAddress);
    Add(document.root, "JobUri", jobAddress);
    return document.Text();
}

std::string JobState(const std::string& jobId, std::optional<std::uintmax_t> bytes) {
    Document document("job");
    Add(document.root, "JobId", jobId);
    Add(document.root, "state", bytes ? "complete" : "waitingForData");
    if (bytes) Add(document.root, "dataBytes", std::to_string(*bytes));
    return document.Text();
}

}  // namespace wndevice
