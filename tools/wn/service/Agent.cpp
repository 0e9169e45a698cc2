#include "tools/wn/service/Agent.h"

#include <CLI/CLI.hpp>

#include "tools/wn/core/Address.h"
#include "tools/wn/core/Command.h"
#include "tools/wn/core/CommandError.h"
#include "tools/wn/core/Texts.h"
#include "tools/wn/doctor/HealthCheck.h"
#include "tools/wn/host/Host.h"
#include "tools/wn/settings/RegistryKey.h"
#include "wncom/Descriptions.h"

namespace wn {
namespace {

using wncom::Bstr;

// What a transport library left on this thread to say why it failed.
std::string ErrorObjectText() {
    wncom::CPComPtr<IErrorInfo> info;
    Bstr text;
    if (GetErrorInfo(0, info.put()) != S_OK || FAILED(info->GetDescription(text.put()))) return {};
    return OneLine(ToUtf8(text.view()));
}

std::string DoctorHint(const std::string& address) {
    return "'wn doctor --to " + address + "' checks the way to the service";
}

// For a failure whose reason stayed inside the library: what is wrong on the way to the service, else where to look.
CommandError Diagnose(const std::string& what, const std::string& address, std::optional<HRESULT> status,
                      const char* otherwise) {
    for (const HealthCheck& check : RoadChecks(address)) {
        const Diagnosis result = Run(check);
        if (!result.fine) {
            return CommandError(
                what, {.reason = result.text, .hint = result.hint, .status = status, .exit = ExitStatus::NotSetUp});
        }
    }
    const bool logged = !kLoggingKey.Read("").value_or("").empty();
    return CommandError(what, {.reason = otherwise,
                               .hint = logged ? "The log says why: 'wn logging show' shows where it is"
                                              : "To see why, configure a log and try again: 'wn logging file PATH'",
                               .status = status});
}

}  // namespace

void AddServiceOptions(CLI::App* command, Service& service) {
    command->add_option("--to", service.address, "Address of the service")
        ->type_name("ADDRESS")
        ->required()
        ->check(ServiceAddress());
    command->add_option("--id", service.id, "Identifier of the service (default: its address)")
        ->type_name("ID")
        ->check(NotEmpty());
    AddTimeoutOption(command, service.limit);
}

// A class is asked for by its ProgID, as any client would; which module serves it only matters when it is missing.
void* CreateComponent(const OLECHAR* progId, const IID& iid, const char* module) {
    CLSID clsid;
    void* object = nullptr;
    HRESULT status = CLSIDFromProgID(progId, &clsid);
    if (SUCCEEDED(status)) status = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, iid, &object);
    if (FAILED(status)) {
        RequireSoundRegistry();
        throw CommandError(
            "Cannot create " + ToUtf8(progId),
            {.reason = StatusText(status),
             .hint = std::string("Register the module that serves it: 'wn register' with the path of ") + module,
             .status = status,
             .exit = ExitStatus::NotSetUp});
    }
    return object;
}

void Check(HRESULT status, const char* what) {
    if (FAILED(status)) throw CommandError(what, {.reason = StatusText(status), .status = status});
}

Agent::Agent(const Service& service, bool json)
    : m_service(service),
      m_json(json),
      m_id(FromUtf8(service.id.empty() ? service.address : service.id, "The identifier")) {
    const Bstr address = FromUtf8(service.address, "The address");
    const auto description = Create<wncom::IServiceDesc>(wncom::kProgIdServiceDesc, "wnComponents.dll");
    wn::Check(description->SetID(m_id.get()), "The service description refused the identifier");
    wn::Check(description->SetAddress(address.get()), "The service description refused the address");
    const auto parent = Create<wncom::IInternalWendrelParent>(wncom::kProgIdWendrelParent, "wnCOM.dll");
    SetErrorInfo(0, nullptr);
    wn::Check(parent->CreateWendrel(description.get(), m_agent.put()), "Cannot create an agent for this service");
    // The agent is there all the same, and its calls then fail for want of an address.
    m_refusal = ErrorObjectText();
}

void Agent::Fail(HRESULT status, const std::string& call, const Bstr& said) const {
    const std::string what = call + " " + m_service.address;
    const std::string words = OneLine(ToUtf8(said.view()));
    if (!words.empty()) throw CommandError(what, {.reason = words, .status = status});
    const std::string reason = m_refusal.empty() ? ErrorObjectText() : m_refusal;
    if (reason.empty()) {
        throw Diagnose(what, m_service.address, status, "The transport library gave no reason");
    }
    throw CommandError(what, {.reason = reason, .hint = DoctorHint(m_service.address), .status = status});
}

void Agent::FailEmpty(const std::string& call) const {
    const std::string what = call + " " + m_service.address;
    const std::string reason = m_refusal.empty() ? ErrorObjectText() : m_refusal;
    if (!reason.empty()) throw CommandError(what, {.reason = reason, .hint = DoctorHint(m_service.address)});
    throw Diagnose(what, m_service.address, std::nullopt, "The service has none, or could not be asked");
}

}  // namespace wn
