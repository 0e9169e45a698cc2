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

// Runs the checks one after the other and keeps what they find.
class Examination {
public:
    explicit Examination(bool json) : m_report(json) {}

    void Do(const std::vector<HealthCheck>& checks) {
        for (const HealthCheck& check : checks) {
            const Diagnosis result = Run(check);
            ++m_count;
            m_wrong += result.fine ? 0 : 1;
            std::string title = check.title;
            title.resize(std::max(title.size(), kTitleWidth), ' ');
            m_report.Line((result.fine ? "ok     " : "WRONG  ") + title + " " + result.text);
            if (!result.hint.empty()) m_report.Line("       " + result.hint);
            m_results.push_back(
                {{"check", check.title}, {"fine", result.fine}, {"text", result.text}, {"hint", result.hint}});
        }
    }

    bool fine() const { return m_wrong == 0; }

    void Finish() {
        m_report.Add("checks", "", m_results, "");
        m_report.Add("wrong", "", m_wrong, "");
        if (fine()) m_report.Line("All is well.");
        m_report.Print();
        if (fine()) return;
        throw CommandError(
            std::to_string(m_wrong) + " of " + std::to_string(m_count) + " checks found something wrong",
            {.exit = ExitStatus::NotSetUp});
    }

private:
    Report m_report;
    nlohmann::ordered_json m_results = nlohmann::ordered_json::array();
    std::size_t m_count = 0;
    std::size_t m_wrong = 0;
};

void Examine(const Service& service, bool json) {
    Examination examination(json);
    examination.Do(SetupChecks());
    examination.Do(TransportChecks());
    // What is wrong already would only be told once more.
    if (!service.address.empty() && examination.fine()) examination.Do(RoadChecks(service.address));
    if (!service.address.empty() && examination.fine()) examination.Do({ConnectionCheck(service, json)});
    examination.Finish();
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
