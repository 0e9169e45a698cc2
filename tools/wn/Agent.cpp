#include "tools/wn/Agent.h"

#include <CLI/CLI.hpp>

#include "tools/wn/RegistryKey.h"
#include "wncom/Descriptions.h"

namespace wn {
namespace {

using wncom::Bstr;

// Where to look after a failure whose reason stays inside the library.
std::string WhereTheReasonIs() {
    for (const char* value : {"pathtotransportsxml", "builddllpath"}) {
        if (kLoggingKey.Read(value).value_or("").empty()) {
            return "The library does not know its catalogue and its transport libraries: see 'wn directories --help'";
        }
    }
    if (kLoggingKey.Read("").value_or("").empty()) {
        return "Configure a log and try again to see why: 'wn logging file PATH'";
    }
    return "The log tells why: 'wn logging show' tells where it is";
}

}  // namespace

void AddServiceOptions(CLI::App* command, Service& service) {
    command->add_option("--to", service.address, "Address of the service")
        ->type_name("ADDRESS")
        ->required()
        ->check(NotEmpty());
    command->add_option("--id", service.id, "Identifier of the service (default: its address)")
        ->type_name("ID")
        ->check(NotEmpty());
}

// A class is asked for by its ProgID, as any client would; which module serves it only matters when it is missing.
void* CreateComponent(const OLECHAR* progId, const IID& iid, const char* module) {
    CLSID clsid;
    void* object = nullptr;
    HRESULT status = CLSIDFromProgID(progId, &clsid);
    if (SUCCEEDED(status)) status = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, iid, &object);
    if (FAILED(status)) {
        throw CommandError("Cannot create " + ToUtf8(progId) + ": " + StatusText(status) +
                           ". Is it registered? ('wn register' with the path of " + module + ")");
    }
    return object;
}

void Check(HRESULT status, const char* what) {
    if (FAILED(status)) throw CommandError(std::string(what) + ": " + StatusText(status));
}

Agent::Agent(const Service& service)
    : m_address(service.address),
      m_id(FromUtf8(service.id.empty() ? service.address : service.id, "The identifier")) {
    const Bstr address = FromUtf8(service.address, "The address");
    const auto description = Create<wncom::IServiceDesc>(wncom::kProgIdServiceDesc, "wnComponents.dll");
    wn::Check(description->SetID(m_id.get()), "The service description refused the identifier");
    wn::Check(description->SetAddress(address.get()), "The service description refused the address");
    const auto parent = Create<wncom::IInternalWendrelParent>(wncom::kProgIdWendrelParent, "wnCOM.dll");
    wn::Check(parent->CreateWendrel(description.get(), m_agent.put()), "No agent for this service");
}

void Agent::Check(HRESULT status, const std::string& what, const Bstr& said) const {
    if (SUCCEEDED(status)) return;
    std::string words = OneLine(ToUtf8(said.view()));
    if (words.empty()) words = WhereTheReasonIs();
    throw CommandError(what + " " + m_address + ": " + StatusText(status) + ". " + words);
}

void Agent::FailEmpty(const std::string& what) const {
    throw CommandError(what + " " + m_address + ": it has none, or could not be asked. " + WhereTheReasonIs());
}

}  // namespace wn
