// wn submit: a job from its ticket to its delivered data.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>

#include "tools/wn/Agent.h"
#include "tools/wn/Command.h"
#include "tools/wn/Deliver.h"
#include "tools/wn/InputFile.h"
#include "tools/wn/TextFile.h"
#include "tools/wn/Texts.h"
#include "wncom/Bstr.h"
#include "wncom/CPComPtr.h"
#include "wncom/Descriptions.h"
#include "wncom/wnCOM.h"

namespace wn {
namespace {

using wncom::Bstr;
using wncom::CPComPtr;

struct Options {
    Service service;
    std::string ticket;
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

Submission Submit(const Options& options) {
    const Bstr ticket = ReadTicket(options.ticket);
    const Agent agent(options.service);
    CPComPtr<IUnknown> answer;
    agent.Check(agent->SendIntentTicket(ticket.get(), answer.put()), "The job was not submitted to");
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
    // Data that cannot be delivered must not leave a job waiting for it.
    if (!options.data.empty()) {
        RequireDelivery();
        const InputFile probe(options.data);
    }
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
    AddServiceOptions(command, options->service);
    command->add_option("--data", options->data, "File to deliver to the address that the service gives")
        ->type_name("FILE")
        ->check(NotEmpty());
    command->footer(
        "Prints the addresses of the job as soon as the service has it, also when the delivery of the data fails\n"
        "afterwards. Example:\n"
        "  wn submit ticket.xml --to http://127.0.0.1:8631/service --data book.pdf");
    command->callback([options, &json] { Run(*options, json); });
}

}  // namespace wn
