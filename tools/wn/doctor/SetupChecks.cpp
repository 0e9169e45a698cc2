#include <ole2.h>

#include <set>

#include "common/Owned.h"
#include "tools/wn/core/CommandError.h"
#include "tools/wn/core/Paths.h"
#include "tools/wn/core/Texts.h"
#include "tools/wn/doctor/HealthCheck.h"
#include "tools/wn/host/Host.h"
#include "tools/wn/settings/RegistryKey.h"
#include "tools/wn/settings/Setting.h"
#include "wncom/Descriptions.h"
#include "wncom/PortMap.h"
#include "wncom/XMLCacheMgr.h"
#include "wncom/XMLSimpleAccessor.h"
#include "wncom/wnCOM.h"

namespace wn {
namespace {

struct Component {
    const OLECHAR* progId;
    const char* module;
};

const Component kComponents[] = {
    {wncom::kProgIdWendrelParent, "wnCOM.dll"},
    {wncom::kProgIdWendrel, "wnCOM.dll"},
    {wncom::kProgIdServiceDesc, "wnComponents.dll"},
    {wncom::kProgIdTransportDesc, "wnComponents.dll"},
    {wncom::kProgIdXMLSimpleAccessor, "wnComponents.dll"},
    {wncom::kProgIdXMLCacheMgr, "wnComponents.dll"},
    {wncom::kProgIdPortMap, "wnComponents.dll"},
};

std::string LookAtRegistry() {
    RequireSoundRegistry();
    const bool any = kProductKey.Exists();
    return any ? "can be read" : "can be read, and holds no settings yet";
}

std::string LookAtClass(const Component& component) {
    const Setting module = ModuleSetting(component.progId);
    const std::string hint = std::string("'wn register' with the path of ") + component.module + " registers it";
    const auto fail = [&](const std::string& reason, const std::string& mend) {
        throw CommandError("The class cannot be used",
                           {.reason = reason, .hint = mend, .exit = ExitStatus::NotSetUp});
    };
    if (module.value.is_null()) fail("It is not registered", hint);
    if (!Exists(module.text)) fail("Its module " + module.text + " is not there", hint);
    const wncom::OwnedModule loaded(
        LoadLibraryExA(NarrowPath(module.text).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
    if (!loaded) {
        const std::string error = ErrorText(GetLastError());
        const std::string why = WhyNotLoaded(module.text);
        fail("Its module " + module.text + " does not load: " + (why.empty() ? error : why),
             "Install the module again");
    }
    if (!GetProcAddress(loaded.get(), "DllGetClassObject")) {
        fail("Its module " + module.text + " exports no DllGetClassObject", hint);
    }
    return module.text;
}

// Opens the log file as a logging program would, and leaves nothing behind.
std::string LookAtLog(const Setting& log) {
    if (log.value.is_null() || !log.text.starts_with("file,")) return log.text;
    const std::string path = log.text.substr(5, log.text.find(',', 5) - 5);
    const std::string narrow = NarrowPath(path);
    const bool existed = Exists(path);
    wncom::OwnedHandle file(CreateFileA(narrow.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                        OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) {
        throw CommandError("The log file " + path + " cannot be opened",
                           {.reason = ErrorText(GetLastError()), .hint = "'wn logging file PATH' names another one"});
    }
    file.reset();
    if (!existed) DeleteFileA(narrow.c_str());
    return log.text;
}

}  // namespace

std::vector<HealthCheck> SetupChecks() {
    std::vector<HealthCheck> checks = {{"home", DescribeHome}, {"registry", LookAtRegistry}};
    for (const Component& component : kComponents) {
        checks.push_back({"class " + ToUtf8(component.progId), [&component] { return LookAtClass(component); }});
    }
    checks.push_back({"logs", [] {
                          Settings logs;
                          AddLoggingSettings(logs);
                          std::set<std::string> told;
                          std::string text;
                          for (const Setting& log : logs) {
                              if (told.insert(LookAtLog(log)).second) text += (text.empty() ? "" : "; ") + log.text;
                          }
                          return text;
                      }});
    return checks;
}

}  // namespace wn
