#include "components/portmap/PortMapData.h"

#include <algorithm>
#include <initializer_list>

#include "components/xml/XmlParse.h"
#include "components/xml/XmlSource.h"

namespace wncom::components {
namespace {

class Reader {
public:
    explicit Reader(std::string_view source) : m_source(source) {}

    PortMapData Read() {
        const pugi::xml_node top = ParseXml(m_source, m_document);
        RequireName(top, "portmap");
        RequireAttributes(top, {});
        PortMapData map;
        for (const pugi::xml_node node : Elements(top, "device")) map.devices.push_back(ReadDevice(node));
        return map;
    }

private:
    DeviceData ReadDevice(pugi::xml_node node) {
        RequireAttributes(node, {"name"});
        DeviceData device{Attribute(node, "name"), {}};
        for (const pugi::xml_node child : Elements(node, "service")) device.services.push_back(ReadService(child));
        return device;
    }

    ServiceData ReadService(pugi::xml_node node) {
        RequireAttributes(node, {"name", "address", "transport"});
        Elements(node, nullptr);
        ServiceData service{Attribute(node, "name"), Attribute(node, "address"), Attribute(node, "transport")};
        if (service.address.empty()) Refuse(node, "the service has no address");
        return service;
    }

    // The children, all of which must be elements of that name; null: there may be none.
    std::vector<pugi::xml_node> Elements(pugi::xml_node parent, const char* name) {
        std::vector<pugi::xml_node> elements;
        for (const pugi::xml_node child : parent.children()) {
            if (child.type() == pugi::node_element) {
                RequireName(child, name);
                elements.push_back(child);
            } else if (std::string_view(child.value()).find_first_not_of(kXmlSpace) != std::string_view::npos) {
                Refuse(child, "no text may stand here");
            }
        }
        return elements;
    }

    void RequireName(pugi::xml_node node, const char* name) {
        if (!name || std::string_view(node.name()) != name) {
            Refuse(node, "the element \"" + std::string(node.name()) + "\" does not belong here");
        }
    }

    void RequireAttributes(pugi::xml_node node, std::initializer_list<std::string_view> known) {
        for (const pugi::xml_attribute attribute : node.attributes()) {
            const std::string name = attribute.name();
            if (std::find(known.begin(), known.end(), name) == known.end()) {
                Refuse(node, "the attribute \"" + name + "\" does not belong here");
            }
        }
    }

    static WideText Attribute(pugi::xml_node node, const char* name) {
        return WidenExactly(CP_UTF8, node.attribute(name).value()).value();
    }

    [[noreturn]] void Refuse(pugi::xml_node node, const std::string& what) {
        throw Problem(kBadDocument, PlaceIn(m_source, node.offset_debug()) + ": " + what);
    }

    std::string_view m_source;
    pugi::xml_document m_document;
};

}  // namespace

PortMapData ParsePortMap(std::string_view source) { return Reader(source).Read(); }

}  // namespace wncom::components
