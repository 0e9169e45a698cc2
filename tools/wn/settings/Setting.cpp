#include "tools/wn/settings/Setting.h"

#include <ole2.h>

#include <cstdlib>
#include <iterator>

#include "libraries/http/shared/Settings.h"
#include "tools/wn/core/Paths.h"
#include "tools/wn/core/Texts.h"
#include "tools/wn/settings/CacheLifetime.h"
#include "tools/wn/settings/RegistryKey.h"
#include "wncom/Descriptions.h"
#include "wncom/PortMap.h"
#include "wncom/XMLCacheMgr.h"
#include "wncom/XMLSimpleAccessor.h"
#include "wncom/wnCOM.h"

namespace wn {
namespace {

// A text of the registry; without it, or with an empty one, what stands instead.
Setting TextSetting(const std::string& name, const std::string& label, const RegistryKey& key, const char* value,
                    const std::string& otherwise) {
    const std::string place = key.place(value);
    const std::string text = key.Read(value).value_or("");
    if (!text.empty()) return {name, label, text, text, Setting::From::Registry, place};
    if (!otherwise.empty()) return {name, label, otherwise, otherwise, Setting::From::Default, place};
    return {name, label, nullptr, "not configured", Setting::From::Nowhere, place};
}

Setting NumberSetting(const char* name, const char* label, const char* value, DWORD inForce, const char* unit) {
    // A value that the transport does not take leaves its default.
    const bool configured = kHttpTransportKey.ReadNumber(value) == inForce;
    return {name,
            label,
            inForce,
            std::to_string(inForce) + " " + unit,
            configured ? Setting::From::Registry : Setting::From::Default,
            kHttpTransportKey.place(value),
            !configured && kHttpTransportKey.Holds(value)};
}

Setting LifetimeSetting() {
    const CacheDays lifetime = CacheLifetime();
    const std::string days = std::to_string(lifetime.days) + (lifetime.days == 1 ? " day" : " days");
    return {"capabilitiesLifetime",
            "tickets are kept",
            lifetime.days,
            lifetime.days == 0 ? "0 days: the cache is off" : days,
            lifetime.configured ? Setting::From::IniFile : Setting::From::Default,
            InWindowsDirectory(kIniFile) + ", section " + kIniSection + ", key " + kIniKey};
}

}  // namespace

// ProgIDs are the same in every view of the registry, class ids are not.
Setting ModuleSetting(const OLECHAR* progId) {
    const std::string label = ToUtf8(progId);
    const std::string name = "class:" + label;
    CLSID clsid;
    if (FAILED(CLSIDFromProgID(progId, &clsid))) {
        const RegistryKey program(label + "\\CLSID", HKEY_CLASSES_ROOT);
        return {name, label, nullptr, "not registered", Setting::From::Nowhere, program.place("")};
    }
    OLECHAR id[39];
    StringFromGUID2(clsid, id, static_cast<int>(std::size(id)));
    return TextSetting(name, label, RegistryKey("CLSID\\" + ToUtf8(id) + "\\InprocServer32", HKEY_CLASSES_ROOT), "",
                       "");
}

Setting VariableSetting(const char* name, const char* label, const char* variable, const std::string& none) {
    const char* const value = std::getenv(variable);
    const std::string place = std::string("variable ") + variable;
    if (!value || !*value) return {name, label, nullptr, none, Setting::From::Default, place};
    return {name, label, value, value, Setting::From::Environment, place};
}

void AddTransportSettings(Settings& settings) {
    settings.push_back(TextSetting("catalogue", "catalogue", kLoggingKey, "pathtotransportsxml", ""));
    settings.push_back(TextSetting("libraries", "libraries", kLoggingKey, "builddllpath", ""));
    const wncom::http::Settings http = wncom::http::ReadSettings();
    settings.push_back(
        NumberSetting("connectTimeout", "connect timeout", "connecttimeout", http.connectTimeout, "ms"));
    settings.push_back(NumberSetting("callTimeout", "call timeout", "calltimeout", http.callTimeout, "ms"));
    settings.push_back(NumberSetting("answerLimit", "answer limit", "answerlimit", http.answerLimit, "KB"));
}

void AddLoggingSettings(Settings& settings) {
    // A component takes its own value, else the default one; the value beside the key counts where there is no key.
    const bool key = kLoggingKey.Exists();
    const RegistryKey& common = key ? kLoggingKey : kProductKey;
    const std::string commonValue = key ? "" : "Logging";
    for (const char* component : {"CWendrel", "CWendrelParent", "JobControlFactory", "wnHttpTransport"}) {
        const std::optional<std::string> own = key ? kLoggingKey.Read(component) : std::nullopt;
        const std::optional<std::string> text = own ? own : common.Read(commonValue);
        const std::string name = std::string("log:") + component;
        const std::string label = std::string("log of ") + component;
        const std::string place = own ? kLoggingKey.place(component) : common.place(commonValue);
        if (text) {
            settings.push_back({name, label, *text, text->empty() ? "off" : *text, Setting::From::Registry, place});
        } else {
            settings.push_back({name, label, nullptr, "off", Setting::From::Nowhere, place});
        }
    }
}

void AddComponentSettings(Settings& settings) {
    settings.push_back(
        TextSetting("portMap", "port map", kPortMapKey, "portmapfile", InWindowsDirectory("portmap.xml")));
    settings.push_back(
        TextSetting("cacheDatabase", "cache database", kCacheKey, "cachefile", InWindowsDirectory("xmlcache.db")));
    settings.push_back(LifetimeSetting());
    settings.push_back(VariableSetting("workflowId", "workflow id", "WF_DESTINATION", "none"));
    const std::vector<std::string> forced = kForceKey.Names();
    std::string names;
    for (const std::string& name : forced) names += (names.empty() ? "" : ", ") + name;
    settings.push_back({"outOfProcess", "out of process", forced, names.empty() ? "no component" : names,
                        names.empty() ? Setting::From::Default : Setting::From::Registry, kForceKey.place()});
    for (const OLECHAR* progId :
         {wncom::kProgIdWendrelParent, wncom::kProgIdWendrel, wncom::kProgIdServiceDesc, wncom::kProgIdTransportDesc,
          wncom::kProgIdXMLSimpleAccessor, wncom::kProgIdXMLCacheMgr, wncom::kProgIdPortMap}) {
        settings.push_back(ModuleSetting(progId));
    }
}

}  // namespace wn
