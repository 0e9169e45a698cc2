// wn portmap: which services there are and which transport reaches each.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include "tools/wn/core/Address.h"
#include "tools/wn/core/Command.h"
#include "tools/wn/core/CommandError.h"
#include "tools/wn/core/Paths.h"
#include "tools/wn/core/Report.h"
#include "tools/wn/portmap/PortMapDocument.h"
#include "tools/wn/settings/Catalogue.h"
#include "tools/wn/settings/RegistryKey.h"

namespace wn {
namespace {

struct Options {
    std::string device;  // empty: the first name below
    std::string service;
    std::string address;
    std::string transport = "network";
    std::string file;
};

constexpr const char* kDevice = "devices";

pugi::xml_node FindService(pugi::xml_node root, const std::string& address) {
    for (const pugi::xml_node device : root.children("device")) {
        if (auto service = device.find_child_by_attribute("service", "address", address.c_str())) return service;
    }
    return {};
}

void SetAttribute(pugi::xml_node node, const char* name, const std::string& value) {
    pugi::xml_attribute attribute = node.attribute(name);
    if (!attribute) attribute = node.append_attribute(name);
    attribute.set_value(value.c_str());
}

// Addresses are compared in the narrow code page after a detour over UTF-8, which only ASCII survives everywhere.
void RequireMatchable(const std::string& address) {
    const bool ascii = std::all_of(address.begin(), address.end(), [](char c) { return (c & 0x80) == 0; });
    if (ascii || GetACP() == CP_UTF8) return;
    throw WrongInput("No client can find " + address + ": it is not ASCII, and the system's code page is " +
                         std::to_string(GetACP()),
                     "Write the host as xn--..., other characters as %XX, and have clients use that address");
}

// Only what the catalogue lists can be reached; without a catalogue anything may come later.
void RequireTransport(const std::string& transport) {
    if (kLoggingKey.Read("pathtotransportsxml").value_or("").empty()) return;
    const Catalogue catalogue = ReadCatalogue(CatalogueDirectory());
    if (catalogue.Find(transport)) return;
    std::string known = "network";
    for (const TransportEntry& entry : catalogue.entries) known += ", " + entry.type;
    throw WrongInput("The catalogue has no transport \"" + transport + "\"", "It must be one of " + known);
}

pugi::xml_node DeviceOf(pugi::xml_node root, const std::string& wanted) {
    const std::string name = wanted.empty() ? kDevice : wanted;
    pugi::xml_node device = root.find_child_by_attribute("device", "name", name.c_str());
    if (!device) {
        device = root.append_child("device");
        SetAttribute(device, "name", name);
    }
    return device;
}

void Add(const Options& options, bool json) {
    RequireMatchable(options.address);
    RequireTransport(options.transport);
    PortMapDocument document(PortMapDocument::Use::Change);
    pugi::xml_node service = FindService(document.Root(), options.address);
    if (!service) {
        service = DeviceOf(document.Root(), options.device).append_child("service");
    } else if (const std::string device = service.parent().attribute("name").as_string();
               !options.device.empty() && device != options.device) {
        throw WrongInput(options.address + " belongs to the device \"" + device + "\" already",
                         "Remove it first: 'wn portmap remove " + options.address + "'");
    }
    if (!options.service.empty()) SetAttribute(service, "name", options.service);
    SetAttribute(service, "address", options.address);
    SetAttribute(service, "transport", options.transport);
    document.Save();
    Report report(json);
    report.Add("address", "address", options.address);
    report.Add("transport", "transport", options.transport);
    report.Add("file", "file", document.path());
    report.Print();
}

void Remove(const Options& options, bool json) {
    PortMapDocument document(PortMapDocument::Use::Change);
    pugi::xml_node service = FindService(document.Root(), options.address);
    if (!service)
        throw WrongInput("The port map has no service with the address " + options.address,
                         "'wn portmap list' shows them");
    service.parent().remove_child(service);
    document.Save();
    Report report(json);
    report.Add("removed", "removed", options.address);
    report.Print();
}

void List(bool json) {
    const PortMapDocument document(PortMapDocument::Use::Read);
    Report report(json);
    nlohmann::json devices = nlohmann::json::array();
    for (const pugi::xml_node device : document.Root().children("device")) {
        report.Line(device.attribute("name").as_string("(no name)"));
        nlohmann::json services = nlohmann::json::array();
        for (const pugi::xml_node service : device.children("service")) {
            const std::string address = service.attribute("address").as_string();
            const std::string transport = service.attribute("transport").as_string("network");
            report.Line("  " + address + "  " + transport);
            services.push_back(
                {{"name", service.attribute("name").as_string()}, {"address", address}, {"transport", transport}});
        }
        devices.push_back({{"name", device.attribute("name").as_string()}, {"services", services}});
    }
    report.Add("devices", "", devices, "");
    report.Add("file", "file", document.path());
    report.Print();
}

void SetFile(const Options& options, bool json) {
    const std::string whole = WholeFile(options.file);
    if (Exists(whole)) RequirePortMap(whole);
    SetPortMapPath(whole);
    Report report(json);
    report.Add("file", "file", whole);
    report.Print();
}

}  // namespace

void AddPortMapCommands(CLI::App& app, const bool& json) {
    CLI::App* portMap = app.add_subcommand("portmap", "Which services there are, and which transport reaches each");
    portMap->require_subcommand(1);
    portMap->footer("A service that the port map does not list is reached over the network.");
    auto options = std::make_shared<Options>();

    CLI::App* add = portMap->add_subcommand("add", "Add a service, or change the one with this address");
    AddArgument(add, "ADDRESS", options->address, "Address of the service")->check(ServiceAddress());
    add->add_option("--device", options->device, "Device that a new service belongs to (default: \"devices\")")
        ->type_name("NAME")
        ->check(NotEmpty());
    add->add_option("--name", options->service, "Name of the service, for people")->type_name("NAME");
    add->add_option("--transport", options->transport, "\"network\", or a transport type that Transports.xml lists")
        ->type_name("TYPE")
        ->capture_default_str();
    add->footer(
        "Example:\n"
        "  wn portmap add http://127.0.0.1:8631/service --device \"Press hall\" --transport network");
    add->callback([options, &json] { Add(*options, json); });

    CLI::App* remove = portMap->add_subcommand("remove", "Remove the service with this address");
    AddArgument(remove, "ADDRESS", options->address, "Address of the service, whole");
    remove->footer("Example:\n  wn portmap remove http://127.0.0.1:8631/service");
    remove->callback([options, &json] { Remove(*options, json); });

    CLI::App* list = portMap->add_subcommand("list", "List the devices and their services");
    list->footer("Example:\n  wn portmap list --json");
    list->callback([&json] { List(json); });

    CLI::App* file = portMap->add_subcommand("file", "Keep the port map in this file");
    AddArgument(file, "PATH", options->file, "XML file; an absent one is an empty port map");
    file->footer("Example:\n  wn portmap file /etc/wncom/portmap.xml");
    file->callback([options, &json] { SetFile(*options, json); });
}

}  // namespace wn
