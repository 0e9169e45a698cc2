#include "tools/wndevice/DeviceData.h"

#include <fstream>
#include <iterator>
#include <new>
#include <stdexcept>

#include "tools/wndevice/xml/XmlPaths.h"

namespace wndevice {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFirstContent = R"(<?xml version="1.0" encoding="UTF-8"?>
<deviceData xmlns="urn:wncom:device-data">
  <status>
    <state>ready</state>
    <operatorMessage/>
  </status>
  <trays>
    <tray id="1"><size>A4</size><weight unit="g/m2">90</weight><sheets>500</sheets></tray>
    <tray id="2"><size>SRA3</size><weight unit="g/m2">135</weight><sheets>2000</sheets></tray>
    <tray id="3"><size>SRA3</size><weight unit="g/m2">250</weight><sheets>1500</sheets></tray>
  </trays>
  <counters readOnly="true">
    <jobsAccepted>0</jobsAccepted>
    <jobsComplete>0</jobsComplete>
  </counters>
</deviceData>
)";

std::string WholeFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    if (!file) throw std::runtime_error("cannot read " + path.string());
    return text;
}

bool IsReadOnly(xmlNode* node) {
    if (node->type == XML_ATTRIBUTE_NODE && FromXml(node->name) == "readOnly") return true;
    for (; node; node = node->parent) {
        if (node->type != XML_ELEMENT_NODE) continue;
        const XmlString readOnly(xmlGetNoNsProp(node, ToXml("readOnly")));
        if (FromXml(readOnly.get()) == "true") return true;
    }
    return false;
}

// The one node whose value a path names. Throws std::invalid_argument with a reason when there is none to be set.
xmlNode& Target(const XmlPaths& paths, const std::string& path) {
    const XPathResult found = paths.Find(path);
    if (found->type != XPATH_NODESET) throw std::invalid_argument("The path selects no node");
    const int count = found->nodesetval ? found->nodesetval->nodeNr : 0;
    if (count != 1) throw std::invalid_argument("The path selects " + std::to_string(count) + " nodes, not one");
    xmlNode& node = *found->nodesetval->nodeTab[0];
    if (node.type != XML_ELEMENT_NODE && node.type != XML_ATTRIBUTE_NODE) {
        throw std::invalid_argument("The path selects neither an element nor an attribute");
    }
    if (node.type == XML_ELEMENT_NODE && xmlFirstElementChild(&node)) {
        throw std::invalid_argument("The element contains other elements, not a value");
    }
    if (IsReadOnly(&node)) throw std::invalid_argument("The value is read-only");
    return node;
}

void SetValue(xmlNode& node, const std::string& value) {
    if (node.type == XML_ATTRIBUTE_NODE) {
        if (!xmlSetNsProp(node.parent, node.ns, node.name, ToXml(value))) throw std::bad_alloc();
        return;
    }
    // Emptied, then filled: the first of the two would take an ampersand for a reference.
    xmlNodeSetContent(&node, nullptr);
    xmlNodeAddContent(&node, ToXml(value));
}

// A namespace is no node in libxml2 and a document has no copy: neither can be asked for by xmlDocCopyNode.
void AddNode(xmlNode& parent, xmlNode& node) {
    xmlNode* const whole =
        node.type == XML_DOCUMENT_NODE ? xmlDocGetRootElement(reinterpret_cast<xmlDoc*>(&node)) : &node;
    if (whole->type == XML_NAMESPACE_DECL) {
        AddElement(parent, "value", FromXml(reinterpret_cast<xmlNs*>(whole)->href));
        return;
    }
    if (whole->type != XML_ELEMENT_NODE) {
        AddElement(parent, "value", ContentOf(*whole));
        return;
    }
    xmlNode* const copy = xmlDocCopyNode(whole, parent.doc, 1);
    if (!copy || !xmlAddChild(&parent, copy)) throw std::bad_alloc();
}

}  // namespace

DeviceData::DeviceData(const fs::path& folder) : m_file(fs::absolute(folder) / "device-data.xml") {
    fs::create_directories(m_file.parent_path());
    const bool stored = fs::exists(m_file);
    try {
        m_document = ParseXml(stored ? WholeFile(m_file) : kFirstContent);
    } catch (const std::invalid_argument& fault) {
        throw std::runtime_error(m_file.string() + " is damaged: " + fault.what());
    }
    if (!stored) Save(*m_document);
}

std::optional<std::string> DeviceData::Read(const DataRequest& request) const {
    const XmlDocument result = NewXml("dataResult");
    xmlNode& root = RootOf(*result);

    const std::lock_guard guard(m_lock);
    RequireOpen();
    const XmlPaths paths(*m_document, request.prefixes);
    const XPathResult found = paths.Find(request.path);
    if (found->type != XPATH_NODESET) {
        AddElement(root, "value", FromXml(XmlString(xmlXPathCastToString(found.get())).get()));
    } else if (found->nodesetval) {
        for (int i = 0; i < found->nodesetval->nodeNr; ++i) AddNode(root, *found->nodesetval->nodeTab[i]);
    }
    if (!root.children) return {};
    return XmlText(*result, XmlLayout::AsItIs);
}

std::vector<SetFailure> DeviceData::Write(const SetDocument& document) {
    const std::lock_guard guard(m_lock);
    RequireOpen();
    XmlDocument changed(xmlCopyDoc(m_document.get(), 1));
    if (!changed) throw std::bad_alloc();
    const XmlPaths paths(*changed, document.prefixes);
    // All paths are looked up before any value changes: none of them sees the values of another.
    std::vector<xmlNode*> targets;
    std::vector<SetFailure> failures;
    for (const DataChange& change : document.changes) {
        try {
            targets.push_back(&Target(paths, change.path));
        } catch (const std::invalid_argument& fault) {
            failures.push_back({change.path, fault.what()});
        }
    }
    if (!failures.empty()) return failures;
    for (std::size_t i = 0; i < targets.size(); ++i) SetValue(*targets[i], document.changes[i].value);
    Save(*changed);
    m_document = std::move(changed);
    return {};
}

void DeviceData::SetCounter(const char* name, std::size_t value) {
    const std::lock_guard guard(m_lock);
    // A file that somebody edited may lack it.
    const xmlNode* const counters = Child(RootOf(*m_document), "counters");
    xmlNode* const counter = counters ? Child(*counters, name) : nullptr;
    if (counter) SetValue(*counter, std::to_string(value));
}

void DeviceData::RequireOpen() const {
    if (m_closed) throw std::runtime_error("The device is stopping");
}

void DeviceData::Save(xmlDoc& document) const {
    fs::path incoming = m_file;
    incoming += ".new";
    std::ofstream file(incoming, std::ios::binary | std::ios::trunc);
    file << XmlText(document, XmlLayout::AsItIs);
    file.close();
    if (!file) throw std::runtime_error("cannot write " + incoming.string());
    fs::rename(incoming, m_file);
}

}  // namespace wndevice
