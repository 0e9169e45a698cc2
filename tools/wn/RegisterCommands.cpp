// wn register, wn unregister: component modules.
#include <CLI/CLI.hpp>
#include <memory>
#include <vector>

#include "tools/wn/ComSession.h"
#include "tools/wn/Command.h"
#include "tools/wn/Paths.h"

namespace wn {
namespace {

using EntryPoint = HRESULT(STDAPICALLTYPE*)();

class Module {
public:
    explicit Module(const std::string& path)
        : m_module(LoadLibraryExA(NarrowPath(path).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH)) {
        if (!m_module) throw CommandError("Cannot load " + path + ": " + ErrorText(GetLastError()));
    }
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;
    ~Module() { FreeLibrary(m_module); }

    EntryPoint Find(const char* name) const {
        return reinterpret_cast<EntryPoint>(reinterpret_cast<void (*)()>(GetProcAddress(m_module, name)));
    }

private:
    HMODULE m_module;
};

void CallEntryPoint(const std::vector<std::string>& paths, const char* entryPoint, const char* done, bool json) {
    const ComSession session;
    Report report(json);
    report.PrintAfter([&] {
        nlohmann::json modules = nlohmann::json::array();
        report.Add("modules", "", modules, "");
        for (const std::string& path : paths) {
            // A registration must hold wherever it is used from.
            const std::string whole = WholeFile(path);
            const Module module(whole);
            const EntryPoint function = module.Find(entryPoint);
            if (!function) throw CommandError(whole + " is no component module: it has no " + entryPoint);
            if (const HRESULT status = function(); FAILED(status)) {
                throw CommandError(std::string(entryPoint) + " of " + whole + " failed: " + StatusText(status));
            }
            report.Line(std::string(done) + " " + whole);
            modules.push_back(whole);
            report.Add("modules", "", modules, "");
        }
    });
}

void AddCommand(CLI::App& app, const bool& json, const char* name, const char* help, const char* entryPoint,
                const char* done) {
    CLI::App* command = app.add_subcommand(name, help);
    auto paths = std::make_shared<std::vector<std::string>>();
    command->add_option("MODULE", *paths, "Component module, such as wnCOM.dll")
        ->type_name("")
        ->required()
        ->check(NotEmpty());
    command->footer(std::string("Example:\n  wn ") + name + " wnCOM.dll wnComponents.dll");
    command->callback([paths, entryPoint, done, &json] { CallEntryPoint(*paths, entryPoint, done, json); });
}

}  // namespace

void AddRegisterCommands(CLI::App& app, const bool& json) {
    AddCommand(app, json, "register", "Register component modules", "DllRegisterServer", "Registered");
    AddCommand(app, json, "unregister", "Remove the registration of component modules", "DllUnregisterServer",
               "Unregistered");
}

}  // namespace wn
