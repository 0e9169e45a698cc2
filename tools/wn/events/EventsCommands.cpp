// wn events: what a service reports, and subscriptions to it.
#include <CLI/CLI.hpp>
#include <memory>
#include <pugixml.hpp>

#include "components/Problem.h"
#include "components/xml/XmlParse.h"
#include "tools/wn/core/Address.h"
#include "tools/wn/core/Command.h"
#include "tools/wn/core/CommandError.h"
#include "tools/wn/core/Report.h"
#include "tools/wn/core/TextFile.h"
#include "tools/wn/core/Texts.h"
#include "tools/wn/events/Subscription.h"
#include "tools/wn/service/Agent.h"

namespace wn {
namespace {

using wncom::Bstr;

struct Options {
    Service service;
    std::vector<std::string> names;
    std::string file;
    Wish wish;
    std::string id;
    std::uint32_t duration = 0;
};

// The items of the agent's list document.
std::vector<std::string> Items(const Bstr& list, const char* element) {
    const std::string text = ToUtf8(list.view());
    std::vector<std::string> items;
    try {
        pugi::xml_document document;
        const pugi::xml_node root = wncom::components::ParseXml(text, document);
        for (const pugi::xml_node item : root.children(element)) items.emplace_back(item.text().get());
    } catch (const wncom::components::Problem&) {
        // The agent writes names into the document as they came.
        throw CommandError("The service answered with invalid names", {.reason = OneLine(text)});
    }
    return items;
}

void List(const Options& options, bool json) {
    const Agent agent(options.service, json);
    Bstr list;
    constexpr const char* kWhat = "Cannot list the events of";
    agent.Call(kWhat,
               [&] { return agent.As<wncom::IComBaseEvent>()->GetSupportedEvents(nullptr, nullptr, list.put()); });
    const std::vector<std::string> events = Items(list, "Event");
    if (events.empty()) agent.FailEmpty(kWhat);
    Report report(json);
    for (const std::string& event : events) report.Line(event);
    report.Add("events", "", events, "");
    report.Print();
}

void ListProperties(const Options& options, bool json) {
    const Agent agent(options.service, json);
    const auto access = agent.As<wncom::IComBaseEvent>();
    Report report(json);
    nlohmann::json all = nlohmann::json::object();
    for (const std::string& name : options.names) {
        Bstr list;
        const Bstr event = FromUtf8(name, "The event's name");
        const std::string what = "Cannot list the properties of " + name + " at";
        agent.Call(what, [&] { return access->GetEventProperties(event.get(), nullptr, nullptr, list.put()); });
        const std::vector<std::string> properties = Items(list, "Name");
        if (properties.empty()) agent.FailEmpty(what);
        report.Line(name);
        for (const std::string& property : properties) report.Line("  " + property);
        all[name] = properties;
    }
    report.Add("events", "", all, "");
    report.Print();
}

void ShowCapabilities(const Options& options, bool json) {
    const Agent agent(options.service, json);
    Bstr said;
    Bstr ticket;
    agent.Call("Cannot read the event capabilities of", said,
               [&] { return agent.As<wncom::IWNEventAccess>()->GetEventCapabilities(said.put(), ticket.put()); });
    Report report(json);
    report.AddDocument("ticket", ToUtf8(ticket.view()));
    report.Print();
}

void SubscribeOnce(const Options& options, bool json) {
    if (options.file.empty() == options.wish.consumer.empty()) {
        throw CLI::ValidationError("Give either FILE or --consumer");
    }
    const Bstr ticket = options.file.empty() ? SubscriptionTicket(options.wish) : ReadDocument(options.file);
    const Agent agent(options.service, json);
    const Subscription made = Subscribe(agent, ticket);
    Report report(json);
    report.Add("subscription", "subscription", made.id);
    report.Add("duration", "duration", made.duration == 0 ? nlohmann::json() : nlohmann::json(made.duration),
               made.duration == 0 ? "" : std::to_string(made.duration) + " s");
    report.Add("expires", "expires", made.expires);
    report.Print();
}

void RenewOnce(const Options& options, bool json) {
    Renew(Agent(options.service, json), options.id, options.duration);
    Report report(json);
    report.Add("renewed", "renewed", options.id);
    report.Print();
}

void CancelOnce(const Options& options, bool json) {
    Cancel(Agent(options.service, json), options.id);
    Report report(json);
    report.Add("cancelled", "cancelled", options.id);
    report.Print();
}

void AddId(CLI::App* command, Options& options) { AddArgument(command, "ID", options.id, "The subscription"); }

void AddSubscribe(CLI::App* events, const std::shared_ptr<Options>& options, const bool& json) {
    CLI::App* subscribe = events->add_subcommand("subscribe", "Have events sent to an address");
    CLI::Option* file =
        subscribe->add_option("FILE", options->file, "Subscription ticket, an XML file in UTF-8")->type_name("");
    const auto alone = [&](CLI::Option* option) { file->excludes(option); };
    alone(subscribe->add_option("--consumer", options->wish.consumer, "Address that the events go to")
              ->type_name("ADDRESS")
              ->check(HttpAddress()));
    alone(subscribe->add_option("--event", options->wish.events, "An event; may be given again (default: all)")
              ->type_name("NAME")
              ->expected(1)
              ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
              ->check(NotEmpty()));
    alone(subscribe->add_option("--duration", options->wish.duration, "How long (default: as the service likes)")
              ->type_name("SECONDS")
              ->check(WholeNumber(1, 0xFFFFFFFF)));
    AddWishOptions(subscribe, options->wish);
    for (const char* name : {"--filter", "--cookie", "--best-effort"}) alone(subscribe->get_option(name));
    AddServiceOptions(subscribe, options->service);
    subscribe->footer(
        "The subscription goes on without wn until it is cancelled or its time is over. Examples:\n"
        "  wn events subscribe subscription.xml --to http://127.0.0.1:8631/service\n"
        "  wn events subscribe --event jobAccepted --filter jobName=Programme --duration 600 \\\n"
        "      --consumer http://127.0.0.1:8099/events --to http://127.0.0.1:8631/service");
    subscribe->callback([options, &json] { SubscribeOnce(*options, json); });
}

}  // namespace

void AddEventsCommands(CLI::App& app, const bool& json) {
    CLI::App* events = app.add_subcommand("events", "What a service reports, and subscriptions to it");
    events->require_subcommand(1);
    events->footer("'wn events COMMAND --help' tells more.");
    auto options = std::make_shared<Options>();

    CLI::App* list = events->add_subcommand("list", "List the events of a service");
    AddServiceOptions(list, options->service);
    list->footer("Example:\n  wn events list --to http://127.0.0.1:8631/service");
    list->callback([options, &json] { List(*options, json); });

    CLI::App* properties = events->add_subcommand("properties", "List the properties of events");
    AddArgument(properties, "EVENT", options->names, "Events; \"all\" stands for every one");
    AddServiceOptions(properties, options->service);
    properties->footer("Example:\n  wn events properties jobAccepted --to http://127.0.0.1:8631/service");
    properties->callback([options, &json] { ListProperties(*options, json); });

    CLI::App* capabilities = events->add_subcommand("capabilities", "Read what subscriptions a service offers");
    AddServiceOptions(capabilities, options->service);
    capabilities->footer("Example:\n  wn events capabilities --to http://127.0.0.1:8631/service");
    capabilities->callback([options, &json] { ShowCapabilities(*options, json); });

    AddSubscribe(events, options, json);

    CLI::App* renew = events->add_subcommand("renew", "Prolong a subscription, counted from now");
    AddId(renew, *options);
    renew->add_option("--duration", options->duration, "How long (default: the last duration again)")
        ->type_name("SECONDS")
        ->check(WholeNumber(1, 0xFFFFFFFF));
    AddServiceOptions(renew, options->service);
    renew->footer("Example:\n  wn events renew ID --duration 600 --to http://127.0.0.1:8631/service");
    renew->callback([options, &json] { RenewOnce(*options, json); });

    CLI::App* cancel = events->add_subcommand("cancel", "End a subscription");
    AddId(cancel, *options);
    AddServiceOptions(cancel, options->service);
    cancel->footer("Example:\n  wn events cancel ID --to http://127.0.0.1:8631/service");
    cancel->callback([options, &json] { CancelOnce(*options, json); });

    AddWatchCommand(*events, json);
}

}  // namespace wn
