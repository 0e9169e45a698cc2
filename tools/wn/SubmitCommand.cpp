// wn submit: a job from its ticket to its delivered data.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>

#include "tools/wn/ComSession.h"
#include "tools/wn/Command.h"
#include "tools/wn/Deliver.h"
#include "tools/wn/InputFile.h"
#include "tools/wn/RegistryKey.h"
#include "tools/wn/Texts.h"
#include "wncom/Bstr.h"
#include "wncom/CPComPtr.h"
#include "wncom/Descriptions.h"
#include "wncom/wnCOM.h"

namespace wn {
namespace {

using wncom::Bstr;
using wncom::CPComPtr;

constexpr std::uint64_t kLargestTicket = 64U << 20;  // bytes

struct Options {
    std::string ticket;
    std::string address;
    std::string id;
    std::string data;
};

// What a submission gave, as texts.
struct Submission {
    std::string dataAddress;
    std::string jobAddress;
    std::string session;
    LONG addressType = -1;
    LONG deliveryMethod = -1;
};

// A class is asked for by its ProgID, as any client would; which module serves it only matters when it is missing.
template <class T>
CPComPtr<T> Create(const OLECHAR* progId, const char* module) {
    CLSID clsid;
    CPComPtr<T> object;
    HRESULT status = CLSIDFromProgID(progId, &clsid);
    if (SUCCEEDED(status)) {
        status = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, T::kIid, object.put_void());
    }
    if (FAILED(status)) {
        throw CommandError("Cannot create " + ToUtf8(progId) + ": " + StatusText(status) +
                           ". Is it registered? ('wn register' with the path of " + module + ")");
    }
    return object;
}

void Check(HRESULT status, const char* what) {
    if (FAILED(status)) throw CommandError(std::string(what) + ": " + StatusText(status));
}

Bstr ReadTicket(const std::string& path) {
    const std::string bytes = InputFile(path).ReadAll(kLargestTicket);
    if (bytes.empty()) throw CommandError(path + " is empty: a ticket is an XML document");
    std::string_view text = bytes;
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
    // The service would be sent what stands before it only.
    if (text.find('\0') != std::string_view::npos) throw CommandError(path + " holds a zero byte: a ticket is text");
    return FromUtf8(text, path);
}

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

Submission Submit(const Options& options) {
    const Bstr ticket = ReadTicket(options.ticket);
    const Bstr address = FromUtf8(options.address, "The address");
    const Bstr id = FromUtf8(options.id.empty() ? options.address : options.id, "The identifier");

    const auto service = Create<wncom::IServiceDesc>(wncom::kProgIdServiceDesc, "wnComponents.dll");
    Check(service->SetID(id.get()), "The service description refused the identifier");
    Check(service->SetAddress(address.get()), "The service description refused the address");
    const auto parent = Create<wncom::IInternalWendrelParent>(wncom::kProgIdWendrelParent, "wnCOM.dll");
    CPComPtr<wncom::IWendrel> agent;
    Check(parent->CreateWendrel(service.get(), agent.put()), "No agent for this service");

    CPComPtr<IUnknown> answer;
    const HRESULT status = agent->SendIntentTicket(ticket.get(), answer.put());
    if (FAILED(status)) {
        throw CommandError("The job was not submitted to " + options.address + ": " + StatusText(status) + ". " +
                           WhereTheReasonIs());
    }
    CPComPtr<wncom::ITransportDesc> transport;
    Check(answer.QueryInterface(transport), "The transport description cannot be read");

    Submission result;
    Bstr text;
    Check(transport->GetTargetURI(text.put()), "The data address cannot be read");
    result.dataAddress = ToUtf8(text.view());
    Check(transport->GetJobURI(text.put()), "The job address cannot be read");
    result.jobAddress = ToUtf8(text.view());
    Check(transport->GetSessionContext(text.put()), "The session cannot be read");
    result.session = ToUtf8(text.view());
    Check(transport->GetAddressType(&result.addressType), "The address type cannot be read");
    Check(transport->GetDeliveryMethod(&result.deliveryMethod), "The delivery method cannot be read");
    return result;
}

std::string NameOfMethod(LONG method) {
    return std::to_string(method) + (method == 1 ? " (POST)" : method == 3 ? " (PUT)" : "");
}

void Run(const Options& options, bool json) {
    // A data file that is not there must not leave a job waiting for it.
    if (!options.data.empty()) InputFile probe(options.data);
    const ComSession session;
    const Submission job = Submit(options);

    // From here on the job exists: its addresses must not be lost, whatever becomes of its data.
    Report report(json);
    const std::string none = "none given by the service";
    report.Add("dataAddress", "data address", job.dataAddress, job.dataAddress.empty() ? none : job.dataAddress);
    report.Add("jobAddress", "job address", job.jobAddress, job.jobAddress.empty() ? none : job.jobAddress);
    report.Add("session", "session", job.session);
    report.Add("addressType", "address type", job.addressType, std::to_string(job.addressType));
    report.Add("deliveryMethod", "delivery method", job.deliveryMethod, NameOfMethod(job.deliveryMethod));
    report.PrintAfter([&] {
        if (options.data.empty()) return;
        if (job.dataAddress.empty()) throw CommandError("The service gave no address for the job's data");
        const Delivery delivery = Deliver(options.data, job.dataAddress, job.deliveryMethod);
        char text[64];
        std::snprintf(text, sizeof(text), "%llu bytes in %.2f s", static_cast<unsigned long long>(delivery.bytes),
                      delivery.seconds);
        report.Add("delivered", "delivered", {{"bytes", delivery.bytes}, {"seconds", delivery.seconds}}, text);
    });
}

}  // namespace

void AddSubmitCommand(CLI::App& app, const bool& json) {
    CLI::App* command = app.add_subcommand("submit", "Submit a job to a device service and deliver its data");
    auto options = std::make_shared<Options>();
    command->add_option("TICKET", options->ticket, "Intent ticket, an XML file in UTF-8")
        ->type_name("")
        ->required()
        ->check(NotEmpty());
    command->add_option("--to", options->address, "Address of the service")
        ->type_name("ADDRESS")
        ->required()
        ->check(NotEmpty());
    command->add_option("--data", options->data, "File to deliver to the address that the service gives")
        ->type_name("FILE")
        ->check(NotEmpty());
    command->add_option("--id", options->id, "Identifier of the service (default: its address)")
        ->type_name("ID")
        ->check(NotEmpty());
    command->footer(
        "Prints the addresses of the job as soon as the service has it, also when the delivery of the data fails\n"
        "afterwards. Example:\n"
        "  wn submit ticket.xml --to http://127.0.0.1:8631/service --data book.pdf");
    command->callback([options, &json] { Run(*options, json); });
}

}  // namespace wn
