#include <chrono>
#include <optional>

#include "tools/wn/core/CommandError.h"
#include "tools/wn/core/Texts.h"
#include "tools/wn/doctor/HealthCheck.h"
#include "tools/wn/portmap/PortMapDocument.h"
#include "tools/wn/settings/Catalogue.h"
#include "tools/wn/settings/Setting.h"

namespace wn {
namespace {

struct Entry {
    std::string address;
    std::string transport;
};

// Every service of the port map, in its order, device by device.
std::vector<std::vector<Entry>> Services() {
    const PortMapDocument document(PortMapDocument::Use::Read);
    std::vector<std::vector<Entry>> devices;
    for (const pugi::xml_node device : document.Root().children("device")) {
        devices.emplace_back();
        for (const pugi::xml_node service : device.children("service")) {
            devices.back().push_back(
                {service.attribute("address").as_string(), service.attribute("transport").as_string()});
        }
    }
    return devices;
}

// The transport of an address: of the first device that has a service with the address in its own, the last such
// service counts.
std::string TransportFor(const std::string& address) {
    for (const auto& device : Services()) {
        const Entry* found = nullptr;
        for (const Entry& service : device) {
            if (service.address.find(address) != std::string::npos) found = &service;
        }
        if (found) return found->transport;
    }
    return {};
}

const TransportEntry& Require(const Catalogue& catalogue, const std::string& transport, const std::string& address) {
    if (const TransportEntry* entry = catalogue.Find(transport)) return *entry;
    throw CommandError("The port map sends " + address + " to the transport \"" + transport + "\"",
                       {.reason = "The catalogue has no such transport",
                        .hint = "'wn portmap add " + address + " --transport network' changes it",
                        .exit = ExitStatus::NotSetUp});
}

// Nothing when it cannot be used, which is told once, by the check of the catalogue.
std::optional<Catalogue> UsableCatalogue() {
    try {
        return ReadCatalogue(CatalogueDirectory());
    } catch (const CommandError&) {
        return std::nullopt;
    }
}

std::string LookAtLibraries() {
    const std::string directory = LibraryDirectory();
    const std::optional<Catalogue> catalogue = UsableCatalogue();
    if (!catalogue) return directory + ", not looked at without a catalogue";
    std::string text;
    for (const TransportEntry& entry : catalogue->entries) {
        CheckTransportLibrary(directory, entry.library);
        text += (text.empty() ? "" : "; ") + entry.type + ": " + directory + entry.library;
    }
    return text;
}

std::string LookAtPortMap() {
    std::size_t count = 0;
    const std::optional<Catalogue> catalogue = UsableCatalogue();
    for (const auto& device : Services()) {
        for (const Entry& service : device) {
            if (catalogue) Require(*catalogue, service.transport, service.address);
        }
        count += device.size();
    }
    return PortMapPath() + ", services: " + std::to_string(count);
}

std::string LookAtTransportSettings() {
    Settings settings;
    AddTransportSettings(settings);
    std::string text;
    for (const Setting& setting : settings) {
        if (setting.unusable) {
            throw CommandError(
                "The setting " + setting.name + " is not usable and " + setting.text + " counts instead",
                {.reason = setting.place, .hint = "Correct or remove the value"});
        }
        if (setting.value.is_number()) text += (text.empty() ? "" : ", ") + setting.label + " " + setting.text;
    }
    return text;
}

}  // namespace

std::vector<HealthCheck> TransportChecks() {
    return {{"catalogue",
             [] {
                 const std::string directory = CatalogueDirectory();
                 return directory + kCatalogueFile + ", network mapping " + ReadCatalogue(directory).networkMapping;
             }},
            {"transport libraries", LookAtLibraries},
            {"port map", LookAtPortMap},
            {"transport settings", LookAtTransportSettings}};
}

std::vector<HealthCheck> RoadChecks(const std::string& address) {
    return {{"road to the service", [address] {
                 const std::string transport = TransportFor(address);
                 const Catalogue catalogue = ReadCatalogue(CatalogueDirectory());
                 const TransportEntry& entry = Require(catalogue, transport, address);
                 CheckTransportLibrary(LibraryDirectory(), entry.library);
                 return (transport.empty() ? "not in the port map, so network" : "transport " + transport) + ": " +
                        entry.type + ", " + entry.library;
             }}};
}

HealthCheck ConnectionCheck(const Service& service, bool json) {
    return {"answer of the service", [service, json] {
                const auto started = std::chrono::steady_clock::now();
                const Agent agent(service, json);
                wncom::Bstr said;
                wncom::Bstr answer;
                // Needs a session and changes nothing at the service.
                agent.Call("No answer from", said, [&] {
                    return agent.As<wncom::IWNEventAccess>()->GetEventCapabilities(said.put(), answer.put());
                });
                const auto took = std::chrono::steady_clock::now() - started;
                return "came in " +
                       std::to_string(std::chrono::duration_cast<std::chrono::milliseconds>(took).count()) + " ms";
            }};
}

Diagnosis Run(const HealthCheck& check) {
    try {
        return {true, check.look(), ""};
    } catch (const CommandError& error) {
        const Explanation& more = error.explanation();
        return {false, error.what() + (more.reason.empty() ? "" : ": " + more.reason), more.hint};
    } catch (const std::exception& error) {
        return {false, std::string("The check itself failed: ") + error.what(), "Report this"};
    }
}

}  // namespace wn
