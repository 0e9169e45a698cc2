// wn register, wn unregister: component modules.
#include <CLI/CLI.hpp>
#include <memory>
#include <vector>

#include "tools/wn/core/ComSession.h"
#include "tools/wn/core/Command.h"
#include "tools/wn/core/CommandError.h"
#include "tools/wn/core/Paths.h"
#include "tools/wn/core/Report.h"
#include "tools/wn/host/Host.h"

namespace wn {
namespace {

struct Options {
    std::vector<std::string> paths;
    Audience audience = Audience::Everyone;
};

class Module {
public:
    explicit Module(const std::string& path)
        : m_module(LoadLibraryExA(NarrowPath(path).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH)) {
        if (m_module) return;
        const std::string error = ErrorText(GetLastError());
        const std::string reason = WhyNotLoaded(path);
        throw CommandError("Cannot load " + path, {.reason = reason.empty() ? error : reason});
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

void CallEntryPoint(const Options& options, const char* entryPoint, const char* done, bool json) {
    const ComSession session;
    const std::string audience = NameOf(options.audience);
    Report report(json);
    report.PrintAfter([&] {
        nlohmann::json modules = nlohmann::json::array();
        report.Add("modules", "", modules, "");
        if (!audience.empty()) report.Add("for", "", audience, "");
        for (const std::string& path : options.paths) {
            // A registration must hold wherever it is used from.
            const std::string whole = WholeFile(path);
            const Module module(whole);
            const EntryPoint function = module.Find(entryPoint);
            if (!function) throw WrongInput(whole + " is not a component module: it has no export " + entryPoint);
            if (const HRESULT status = CallFor(options.audience, function); FAILED(status)) {
                throw CommandError(
                    std::string(entryPoint) + " of " + whole + " failed",
                    {.reason = StatusText(status), .hint = AdviceAfter(status, options.audience), .status = status});
            }
            report.Line(std::string(done) + (audience.empty() ? " " : " for " + audience + ": ") + whole);
            modules.push_back(whole);
            report.Add("modules", "", modules, "");
        }
    });
}

void AddCommand(CLI::App& app, const bool& json, const char* name, const char* help, const char* entryPoint,
                const char* done) {
    CLI::App* command = app.add_subcommand(name, help);
    auto options = std::make_shared<Options>();
    AddArgument(command, "MODULE", options->paths, "Component module, such as wnCOM.dll");
    AddAudienceOption(command, options->audience);
    command->footer(std::string("Example:\n  wn ") + name + " wnCOM.dll wnComponents.dll");
    command->callback([options, entryPoint, done, &json] { CallEntryPoint(*options, entryPoint, done, json); });
}

}  // namespace

void AddRegisterCommands(CLI::App& app, const bool& json) {
    AddCommand(app, json, "register", "Register component modules", "DllRegisterServer", "Registered");
    AddCommand(app, json, "unregister", "Remove the registration of component modules", "DllUnregisterServer",
               "Unregistered");
}

}  // namespace wn
