// One setting in force, and where it comes from.
#pragma once

#include <windows.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace wn {

struct Setting {
    // Nowhere: nothing is configured and there is no default.
    enum class From { Registry, IniFile, Environment, CommandLine, System, Default, Nowhere };

    std::string name;              // in JSON
    std::string label;             // for people
    nlohmann::ordered_json value;  // null when there is none
    std::string text;              // the value for people
    From from = From::Nowhere;
    // The key and value, the file, the variable; for a default or nothing, where one would be set.
    std::string place;
    bool unusable = false;  // something is configured that its reader does not take
};
using Settings = std::vector<Setting>;

// The module that serves a class.
Setting ModuleSetting(const OLECHAR* progId);
// An environment variable that may be set; without it the value is null, shown as none.
Setting VariableSetting(const char* name, const char* label, const char* variable, const std::string& none);

// Each adds the settings of one part of the system, as the part itself would read them at this moment.
void AddHostSettings(Settings& settings);
void AddTransportSettings(Settings& settings);
void AddLoggingSettings(Settings& settings);
void AddComponentSettings(Settings& settings);

}  // namespace wn
