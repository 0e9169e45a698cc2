// wn capabilities: the ticket that says what a service can do.
#include <CLI/CLI.hpp>
#include <memory>

#include "tools/wn/core/Command.h"
#include "tools/wn/core/Report.h"
#include "tools/wn/core/TextFile.h"
#include "tools/wn/core/Texts.h"
#include "tools/wn/service/Agent.h"
#include "tools/wn/settings/CacheLifetime.h"
#include "wncom/XMLCacheMgr.h"

namespace wn {
namespace {

using wncom::Bstr;

struct Options {
    Service service;
    std::string output;
};

// What the cache holds for the service. Without a cache manager there is nothing in it, and the agent does without.
Bstr CachedTicket(const Bstr& id) {
    CLSID clsid;
    wncom::CPComPtr<wncom::IXMLCacheMgr> cache;
    Bstr ticket;
    if (SUCCEEDED(CLSIDFromProgID(wncom::kProgIdXMLCacheMgr, &clsid)) &&
        SUCCEEDED(
            CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, wncom::IXMLCacheMgr::kIid, cache.put_void()))) {
        const std::basic_string<OLECHAR> key = std::basic_string<OLECHAR>(id.view()) + OLESTR("-capTicket");
        if (FAILED(cache->FetchXML(key.c_str(), wncom::kCacheFlags, ticket.put()))) return {};
    }
    return ticket;
}

void Run(const Options& options, bool json) {
    const Agent agent(options.service, json);
    // The agent does not tell where a ticket came from. But it takes what the cache holds, unless the cache is off
    // (a lifetime of 0 days), so whether something is there when it is asked says it.
    Bstr cached;
    if (CacheLifetime().days != 0) cached = CachedTicket(agent.id());
    Bstr ticket;
    agent.Call("Cannot read the capabilities of", [&] { return agent->GetCapabilitiesTicket(ticket.put()); });
    const bool fromCache = cached && cached.view() == ticket.view();
    const std::string text = ToUtf8(ticket.view());

    Report report(json);
    report.Add("source", "source", fromCache ? "cache" : "service");
    if (!options.output.empty()) {
        WriteTextFile(options.output, text);
        report.Add("file", "file", options.output);
    } else {
        report.AddDocument("ticket", text);
    }
    report.Print();
}

}  // namespace

void AddCapabilitiesCommand(CLI::App& app, const bool& json) {
    CLI::App* command = app.add_subcommand("capabilities", "Read what a device service can do");
    auto options = std::make_shared<Options>();
    AddServiceOptions(command, options->service);
    command->add_option("--output", options->output, "Write the ticket into this file instead of showing it")
        ->type_name("FILE")
        ->check(NotEmpty());
    command->footer(
        "Prints the capabilities ticket, and on standard error whether it came from the cache or from the service. A ticket\n"
        "stays in the cache for the days that 'wn config' shows; it is kept under the identifier of the service. \"cache\" means that\n"
        "this very ticket lay in the cache when the agent was asked, which then asks no service. Example:\n"
        "  wn capabilities --to http://127.0.0.1:8631/service --output capabilities.xml");
    command->callback([options, &json] { Run(*options, json); });
}

}  // namespace wn
