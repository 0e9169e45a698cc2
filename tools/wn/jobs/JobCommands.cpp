// wn deliver, wn job: a job that exists already, by its addresses.
#include <CLI/CLI.hpp>
#include <memory>

#include "tools/wn/core/Address.h"
#include "tools/wn/core/Command.h"
#include "tools/wn/core/Report.h"
#include "tools/wn/core/Waiting.h"
#include "tools/wn/jobs/JobHttp.h"

namespace wn {
namespace {

struct Options {
    std::string file;
    std::string address;
    bool put = false;
    TimeLimit limit{};
};

void DeliverFile(const Options& options, bool json) {
    RequireHttp();
    InputFile file(options.file);
    const DeliveryMethod method = options.put ? DeliveryMethod::Put : DeliveryMethod::Post;
    const Delivery delivery = Deliver(file, options.address, method, options.limit);
    Report report(json);
    report.Add("dataAddress", "data address", options.address);
    report.Add("delivered", "delivered", delivery.json(), delivery.text());
    report.Print();
}

void ShowJob(const Options& options, bool json) {
    RequireHttp();
    Report report(json);
    report.AddDocument("job", ReadJob(options.address, options.limit));
    report.Print();
}

}  // namespace

void AddJobCommands(CLI::App& app, const bool& json) {
    auto options = std::make_shared<Options>();
    CLI::App* deliver = app.add_subcommand("deliver", "Deliver the data of a job that was submitted before");
    AddArgument(deliver, "FILE", options->file, "File or pipe, or - for standard input");
    deliver->add_option("--to", options->address, "Data address of the job, as 'wn submit' showed it")
        ->type_name("ADDRESS")
        ->required()
        ->check(HttpAddress());
    deliver->add_flag("--put", options->put, "Deliver with PUT instead of POST, for delivery method 3");
    AddTimeoutOption(deliver, options->limit);
    deliver->footer("Example:\n  wn deliver book.pdf --to http://127.0.0.1:8631/service/jobs/ID/data");
    deliver->callback([options, &json] { DeliverFile(*options, json); });

    CLI::App* job = app.add_subcommand("job", "Show the state of a job");
    AddArgument(job, "ADDRESS", options->address, "Job address, as 'wn submit' showed it")->check(HttpAddress());
    AddTimeoutOption(job, options->limit);
    job->footer("Example:\n  wn job http://127.0.0.1:8631/service/jobs/ID");
    job->callback([options, &json] { ShowJob(*options, json); });
}

}  // namespace wn
