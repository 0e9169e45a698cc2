// wn submit: a job from its ticket to its delivered data.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>

#include "tools/wn/core/Command.h"
#include "tools/wn/core/CommandError.h"
#include "tools/wn/core/InputFile.h"
#include "tools/wn/core/Report.h"
#include "tools/wn/core/TextFile.h"
#include "tools/wn/core/Texts.h"
#include "tools/wn/jobs/JobHttp.h"
#include "tools/wn/service/Agent.h"
#include "wncom/Bstr.h"
#include "wncom/CPComPtr.h"
#include "wncom/Descriptions.h"
#include "wncom/wnCOM.h"

namespace wn {
namespace {

using Clock = std::chrono::steady_clock;
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

Submission Submit(const Options& options, const Bstr& ticket, bool json) {
    const Agent agent(options.service, json);
    CPComPtr<IUnknown> answer;
    agent.Call("The job was not submitted to", [&] { return agent->SendIntentTicket(ticket.get(), answer.put()); });
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

// What is left of the limit; at least a little, so that it can be told how far things went.
TimeLimit Left(TimeLimit limit, Clock::time_point started) {
    if (!limit) return limit;
    const auto past = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - started);
    return std::max(std::chrono::milliseconds(1), *limit - past);
}

void DeliverData(const Options& options, const Submission& job, InputFile& file, TimeLimit limit, Report& report) {
    if (job.dataAddress.empty()) {
        throw CommandError("The data was not delivered",
                           {.reason = "The service gave no address for it", .exit = ExitStatus::NotDelivered});
    }
    const DeliveryMethod method = job.deliveryMethod == 3 ? DeliveryMethod::Put : DeliveryMethod::Post;
    try {
        const Delivery delivery = Deliver(file, job.dataAddress, method, limit);
        report.Add("delivered", "delivered", delivery.json(), delivery.text());
    } catch (const CommandError& error) {
        // The job waits for its data: nothing is lost as long as its addresses are known.
        Explanation more = error.explanation();
        const bool interrupted = more.exit != ExitStatus::Failed && more.exit != ExitStatus::TimeOver;
        if (!interrupted) more.exit = ExitStatus::NotDelivered;
        more.hint = "The job at " + job.jobAddress + " waits for its data: 'wn deliver " + options.data + " --to " +
                    job.dataAddress + (method == DeliveryMethod::Put ? " --put'" : "'");
        throw CommandError(error.what(), more);
    }
}

void Run(const Options& options, bool json) {
    if (options.ticket == "-" && options.data == "-") {
        throw WrongInput("Standard input cannot be both the ticket and the data");
    }
    const Clock::time_point started = Clock::now();
    // Data that cannot be delivered must not leave a job waiting for it.
    const Bstr ticket = ReadDocument(options.ticket);
    std::optional<InputFile> data;
    if (!options.data.empty()) {
        RequireHttp();
        data.emplace(options.data);
    }
    const Submission job = Submit(options, ticket, json);

    // From here on the job exists: its addresses must not be lost, whatever becomes of its data.
    Report report(json);
    const std::string none = "none given by the service";
    report.Add("dataAddress", "data address", job.dataAddress, job.dataAddress.empty() ? none : job.dataAddress);
    report.Add("jobAddress", "job address", job.jobAddress, job.jobAddress.empty() ? none : job.jobAddress);
    report.Add("session", "session", job.session);
    report.Add("addressType", "address type", job.addressType, std::to_string(job.addressType));
    report.Add("deliveryMethod", "delivery method", job.deliveryMethod, NameOfMethod(job.deliveryMethod));
    report.PrintAfter([&] {
        if (data) DeliverData(options, job, *data, Left(options.service.limit, started), report);
    });
}

}  // namespace

void AddSubmitCommand(CLI::App& app, const bool& json) {
    CLI::App* command = app.add_subcommand("submit", "Submit a job to a device service and deliver its data");
    auto options = std::make_shared<Options>();
    AddArgument(command, "TICKET", options->ticket, "Intent ticket, an XML file in UTF-8, or - for standard input");
    AddServiceOptions(command, options->service);
    command
        ->add_option("--data", options->data,
                     "File or pipe to deliver to the address that the service gives, or - for standard input")
        ->type_name("FILE")
        ->check(NotEmpty());
    command->footer(
        "Prints the addresses of the job as soon as the service has it, also when the delivery of the data fails\n"
        "afterwards; 'wn deliver' then tries again. Examples:\n"
        "  wn submit ticket.xml --to http://127.0.0.1:8631/service --data book.pdf\n"
        "  gs -q -sDEVICE=pdfwrite -o - book.ps | wn submit ticket.xml --to http://127.0.0.1:8631/service --data -");
    command->callback([options, &json] { Run(*options, json); });
}

}  // namespace wn
