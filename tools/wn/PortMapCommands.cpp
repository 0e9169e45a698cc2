// wn portmap: which services there are and which transport reaches each.
#include <CLI/CLI.hpp>
#include <memory>
#include <pugixml.hpp>
#include <sstream>

#include "tools/wn/Command.h"
#include "tools/wn/InputFile.h"
#include "tools/wn/RegistryKey.h"

namespace wn {
namespace {

constexpr std::uint64_t kLargestFile = 64U << 20;  // bytes
constexpr const char* kFileValue = "portmapfile";

struct Options {
    std::string device = "devices";
    std::string service;
    std::string address;
    std::string transport = "network";
    std::string file;
};

std::string FilePath() {
    if (const auto configured = kPortMapKey.Read(kFileValue); configured && !configured->empty()) return *configured;
    char folder[MAX_PATH];
    const UINT length = GetWindowsDirectoryA(folder, sizeof(folder));
    if (length == 0 || length >= sizeof(folder)) throw CommandError("The Windows directory is unknown");
    return std::string(folder, length) + "\\portmap.xml";
}

// The file as a person wrote it, comments and all; a missing file is an empty port map.
class PortMapDocument {
public:
    PortMapDocument() : m_path(FilePath()) {
        if (GetFileAttributesA(m_path.c_str()) != INVALID_FILE_ATTRIBUTES) {
            const std::string text = InputFile(m_path).ReadAll(kLargestFile);
            const pugi::xml_parse_result result = m_document.load_buffer(text.data(), text.size(), pugi::parse_full);
            if (!result) {
                throw CommandError(m_path + " is damaged at byte " + std::to_string(result.offset) + ": " +
                                   result.description() + ". Mend it by hand first");
            }
        }
        if (!Root()) m_document.append_child("portmap");
    }

    pugi::xml_node Root() const { return m_document.child("portmap"); }
    const std::string& path() const { return m_path; }

    // The file holds the old or the new text at every moment.
    void Save() const {
        std::ostringstream text;
        m_document.save(text, "  ", pugi::format_default, pugi::encoding_utf8);
        const std::string bytes = text.str();
        const std::string temporary = m_path + ".new";
        const HANDLE file =
            CreateFileA(temporary.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file == INVALID_HANDLE_VALUE) {
            throw CommandError("Cannot write " + temporary + ": " + ErrorText(GetLastError()));
        }
        DWORD written = 0;
        const bool whole = WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) &&
                           written == bytes.size();
        const DWORD error = GetLastError();
        CloseHandle(file);
        if (!whole) throw CommandError("Cannot write " + temporary + ": " + ErrorText(error));
        if (!MoveFileExA(temporary.c_str(), m_path.c_str(), MOVEFILE_REPLACE_EXISTING)) {
            throw CommandError("Cannot replace " + m_path + ": " + ErrorText(GetLastError()));
        }
    }

private:
    std::string m_path;
    pugi::xml_document m_document;
};

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

void Add(const Options& options, bool json) {
    PortMapDocument document;
    pugi::xml_node service = FindService(document.Root(), options.address);
    if (!service) {
        pugi::xml_node device = document.Root().find_child_by_attribute("device", "name", options.device.c_str());
        if (!device) {
            device = document.Root().append_child("device");
            SetAttribute(device, "name", options.device);
        }
        service = device.append_child("service");
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
    PortMapDocument document;
    pugi::xml_node service = FindService(document.Root(), options.address);
    if (!service) throw CommandError("The port map has no service with the address " + options.address);
    service.parent().remove_child(service);
    document.Save();
    Report report(json);
    report.Add("removed", "removed", options.address);
    report.Print();
}

void List(bool json) {
    const PortMapDocument document;
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
    char whole[1024];
    const DWORD length = GetFullPathNameA(options.file.c_str(), sizeof(whole), whole, nullptr);
    if (length == 0 || length >= sizeof(whole)) throw CommandError("Not a path: " + options.file);
    kPortMapKey.Write(kFileValue, whole);
    Report report(json);
    report.Add("file", "file", whole);
    report.Print();
}

}  // namespace

void AddPortMapCommands(CLI::App& app, const bool& json) {
    CLI::App* portMap = app.add_subcommand("portmap", "Which services there are, and which transport reaches each");
    portMap->require_subcommand(1);
    auto options = std::make_shared<Options>();

    CLI::App* add = portMap->add_subcommand("add", "Add a service, or change the one with this address");
    add->add_option("ADDRESS", options->address, "Address of the service")->required();
    add->add_option("--device", options->device, "Device that a new service belongs to")->capture_default_str();
    add->add_option("--name", options->service, "Name of the service");
    add->add_option("--transport", options->transport, "\"network\", or a type of the catalogue")
        ->capture_default_str();
    add->callback([options, &json] { Add(*options, json); });

    CLI::App* remove = portMap->add_subcommand("remove", "Remove the service with this address");
    remove->add_option("ADDRESS", options->address, "Address of the service")->required();
    remove->callback([options, &json] { Remove(*options, json); });

    portMap->add_subcommand("list", "List the devices and their services")->callback([&json] { List(json); });

    CLI::App* file = portMap->add_subcommand("file", "Keep the port map in this file");
    file->add_option("PATH", options->file, "XML file; an absent one is an empty port map")->required();
    file->callback([options, &json] { SetFile(*options, json); });
}

}  // namespace wn
