// wn config: every setting in force, and where each comes from.
#include <CLI/CLI.hpp>
#include <algorithm>

#include "tools/wn/core/Command.h"
#include "tools/wn/core/Report.h"
#include "tools/wn/host/Host.h"
#include "tools/wn/settings/Setting.h"

namespace wn {
namespace {

constexpr std::size_t kLabelWidth = 28;  // characters; the longest class name

const char* NameOf(Setting::From from) {
    switch (from) {
        case Setting::From::Registry:
            return "registry";
        case Setting::From::IniFile:
            return "initialisation file";
        case Setting::From::Environment:
            return "environment";
        case Setting::From::CommandLine:
            return "command line";
        case Setting::From::System:
            return "system";
        case Setting::From::Default:
            return "default";
        case Setting::From::Nowhere:
            return "nowhere";
    }
    return "";
}

std::string SourceOf(const Setting& setting) {
    if (setting.unusable) return "default, because the value cannot be used: " + setting.place;
    if (setting.from == Setting::From::Default) return "default; can be set in " + setting.place;
    if (setting.from == Setting::From::Nowhere) return "can be set in " + setting.place;
    return std::string(NameOf(setting.from)) + ": " + setting.place;
}

void Run(bool json) {
    Settings settings;
    AddViewSetting(settings);
    AddHostSettings(settings);
    AddTransportSettings(settings);
    AddComponentSettings(settings);
    AddLoggingSettings(settings);

    Report report(json);
    for (const Setting& setting : settings) {
        report.Add(setting.name.c_str(), "",
                   {{"value", setting.value}, {"from", NameOf(setting.from)}, {"place", setting.place}}, "");
        std::string label = setting.label;
        label.resize(std::max(label.size(), kLabelWidth), ' ');
        report.Line(label + " " + setting.text);
        report.Line("    " + SourceOf(setting));
    }
    report.Print();
}

}  // namespace

void AddConfigCommand(CLI::App& app, const bool& json) {
    CLI::App* command = app.add_subcommand("config", "Show every setting in force, and where it comes from");
    command->footer(
        "Below each value stands where it comes from, or where it can be set. 'wn register', 'wn directories', 'wn\n"
        "logging' and 'wn portmap' set most of them. Example:\n"
        "  wn config --json");
    command->callback([&json] { Run(json); });
}

}  // namespace wn
