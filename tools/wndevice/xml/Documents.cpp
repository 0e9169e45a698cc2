#include "tools/wndevice/xml/Documents.h"

#include <stdexcept>

#include "tools/wndevice/events/Events.h"

namespace wndevice {
namespace {

constexpr std::size_t kLongestJobName = 256;  // bytes
constexpr std::size_t kMostChanges = 1000;
constexpr std::size_t kLongestValue = 65536;  // bytes

// The first element of a name in document order, below a node or the node itself.
const xmlNode* FirstNamed(const xmlNode& top, const char* name) {
    const xmlNode* node = &top;
    while (node) {
        if (node->type == XML_ELEMENT_NODE && xmlStrEqual(node->name, ToXml(name))) return node;
        if (node->type == XML_ELEMENT_NODE && node->children) {
            node = node->children;
            continue;
        }
        while (node && node != &top && !node->next) node = node->parent;
        node = node == &top || !node ? nullptr : node->next;
    }
    return nullptr;
}

}  // namespace

std::string WorkflowOfRequest(const xmlDoc& request) {
    const xmlNode* const id = Child(RootNamed(request, "capabilitiesRequest"), "workflowId");
    if (!id) throw std::invalid_argument("The capabilities request has no workflowId");
    return ContentOf(*id);
}

std::string JobNameOf(const xmlDoc& ticket) {
    const xmlNode* const found = FirstNamed(RootOf(ticket), "jobName");
    const std::string name = found ? ContentOf(*found) : std::string();
    return name.size() <= kLongestJobName && IsPlainText(name) ? name : std::string();
}

std::string CapabilitiesTicket(const std::string& deviceName, const std::string& workflowId) {
    const XmlDocument document = NewXml("capabilities");
    xmlNode& root = RootOf(*document);
    AddElement(root, "deviceName", deviceName);
    xmlNode& workflow = AddElement(root, "workflow");
    AddElement(workflow, "workflowId", workflowId.empty() ? "production" : workflowId);
    AddElement(workflow, "dataDelivery", "post");
    xmlNode& colours = AddElement(workflow, "colourModes");
    for (const char* mode : {"colour", "monochrome"}) AddElement(colours, "mode", mode);
    xmlNode& media = AddElement(workflow, "media");
    for (const char* size : {"A4", "A3", "SRA3"}) AddElement(media, "size", size);
    xmlNode& events = AddElement(root, "events");
    for (const EventKind& kind : EventKinds()) AddElement(events, "event", kind.name);
    return XmlText(*document);
}

std::string ResponseTicket(const std::string& jobId, const std::string& dataAddress, const std::string& jobAddress) {
    const XmlDocument document = NewXml("submitResponse");
    xmlNode& root = RootOf(*document);
    AddElement(root, "JobId", jobId);
    AddElement(root, "PostURI", dataAddress);
    AddElement(root, "JobUri", jobAddress);
    return XmlText(*document);
}

std::string JobState(const std::string& jobId, std::optional<std::uintmax_t> bytes) {
    const XmlDocument document = NewXml("job");
    xmlNode& root = RootOf(*document);
    AddElement(root, "JobId", jobId);
    AddElement(root, "state", bytes ? "complete" : "waitingForData");
    if (bytes) AddElement(root, "dataBytes", std::to_string(*bytes));
    return XmlText(*document);
}

DataRequest ParseDataRequest(const xmlDoc& document) {
    const xmlNode& root = RootNamed(document, "dataRequest");
    return {ContentOfChild(root, "path"), ContentOfChild(root, "prefixes")};
}

SetDocument ParseSetDocument(const xmlDoc& document) {
    const xmlNode& root = RootNamed(document, "setData");
    SetDocument result{ContentOfChild(root, "prefixes"), {}};
    const std::vector<xmlNode*> sets = Children(root, "set");
    if (sets.empty()) throw std::invalid_argument("The document sets no values");
    if (sets.size() > kMostChanges) {
        throw std::invalid_argument("The document sets more than " + std::to_string(kMostChanges) + " values");
    }
    for (const xmlNode* const set : sets) {
        const xmlNode* const path = Child(*set, "path");
        const xmlNode* const value = Child(*set, "value");
        if (!path || !value) throw std::invalid_argument("A set element has no path or no value");
        result.changes.push_back({ContentOf(*path), ContentOf(*value)});
        if (result.changes.back().value.size() > kLongestValue) {
            throw std::invalid_argument("A value is longer than " + std::to_string(kLongestValue) + " bytes");
        }
    }
    return result;
}

std::string FailureDetails(const std::vector<SetFailure>& failures) {
    const XmlDocument document = NewXml("setFailures");
    for (const SetFailure& failure : failures) {
        xmlNode& element = AddElement(RootOf(*document), "failure");
        AddElement(element, "path", failure.path);
        AddElement(element, "reason", failure.reason);
    }
    return XmlText(*document);
}

}  // namespace wndevice
