// wn doctor: what is well, what is not, and what mends it.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include "tools/wn/core/Address.h"
#include "tools/wn/core/Command.h"
#include "tools/wn/core/CommandError.h"
#include "tools/wn/core/Report.h"
#include "tools/wn/doctor/HealthCheck.h"

namespace wn {
namespace {

constexpr std::size_t kTitleWidth = 34;  // characters

void Examine(const Service& service, bool json) {
    std::vector<HealthCheck> checks = SetupChecks();
    for (HealthCheck& check : TransportChecks()) checks.push_back(std::move(check));
    if (!service.address.empty()) {
        for (HealthCheck& check : RoadChecks(service.address)) checks.push_back(std::move(check));
        checks.push_back(ConnectionCheck(service, json));
    }
    Report report(json);
    nlohmann::ordered_json results = nlohmann::ordered_json::array();
    std::size_t wrong = 0;
    for (const HealthCheck& check : checks) {
        const Diagnosis result = Run(check);
        wrong += result.fine ? 0 : 1;
        std::string title = check.title;
        title.resize(std::max(title.size(), kTitleWidth), ' ');
        report.Line((result.fine ? "ok     " : "WRONG  ") + title + " " + result.text);
        if (!result.hint.empty()) report.Line("       " + result.hint);
        results.push_back(
            {{"check", check.title}, {"fine", result.fine}, {"text", result.text}, {"hint", result.hint}});
    }
    report.Add("checks", "", results, "");
    report.Add("wrong", "", wrong, "");
    if (wrong == 0) report.Line("All is well.");
    report.Print();
    if (wrong != 0) {
        throw CommandError(
            std::to_string(wrong) + " of " + std::to_string(checks.size()) + " checks found something wrong",
            {.exit = ExitStatus::NotSetUp});
    }
}

}  // namespace

void AddDoctorCommand(CLI::App& app, const bool& json) {
    CLI::App* doctor = app.add_subcommand("doctor", "Check everything that wnCOM needs, and say what mends it");
    auto service = std::make_shared<Service>();
    doctor->add_option("--to", service->address, "Check the road to this service too, and whether it answers")
        ->type_name("ADDRESS")
        ->check(ServiceAddress());
    AddTimeoutOption(doctor, service->limit);
    doctor->footer("Status 0 only when all is well. Example:\n  wn doctor --to http://127.0.0.1:8631/service");
    doctor->callback([service, &json] { Examine(*service, json); });
}

}  // namespace wn
