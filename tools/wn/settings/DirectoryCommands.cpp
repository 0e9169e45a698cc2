// wn directories: where the catalogue and the transport libraries lie.
#include <CLI/CLI.hpp>
#include <memory>

#include "tools/wn/core/Command.h"
#include "tools/wn/core/CommandError.h"
#include "tools/wn/core/Paths.h"
#include "tools/wn/core/Report.h"
#include "tools/wn/settings/Catalogue.h"
#include "tools/wn/settings/RegistryKey.h"

namespace wn {
namespace {

constexpr const char* kCatalogueValue = "pathtotransportsxml";
constexpr const char* kLibrariesValue = "builddllpath";
constexpr std::size_t kLongestValue = 1023;  // bytes; what the library reads

// The library puts file names right behind these values, so each must end with its separator.
std::string WithSeparator(const std::string& path) {
    std::string directory = WholeDirectory(path);
    if (directory.back() != '\\' && directory.back() != '/') {
        directory += directory.find('/') != std::string::npos ? '/' : '\\';
    }
    if (NarrowPath(directory).size() > kLongestValue) {
        throw WrongInput("The directory's path is longer than " + std::to_string(kLongestValue) +
                         " bytes: " + directory);
    }
    return directory;
}

void Run(const std::string& catalogue, const std::string& libraries, bool json) {
    // Both are looked at before either is written: a command that fails changes nothing.
    const std::string newCatalogue = catalogue.empty() ? "" : WithSeparator(catalogue);
    const std::string newLibraries = libraries.empty() ? "" : WithSeparator(libraries);
    if (!newCatalogue.empty()) {
        const std::string used = newLibraries.empty() ? kLoggingKey.Read(kLibrariesValue).value_or("") : newLibraries;
        for (const TransportEntry& entry : ReadCatalogue(newCatalogue).entries) {
            if (!used.empty()) RequireLibraryFile(used, entry.library);
        }
    }
    if (!newCatalogue.empty()) kLoggingKey.Write(kCatalogueValue, newCatalogue);
    if (!newLibraries.empty()) kLoggingKey.Write(kLibrariesValue, newLibraries);
    Report report(json);
    report.AddSetting("catalogue", kLoggingKey.Read(kCatalogueValue), "not configured");
    report.AddSetting("libraries", kLoggingKey.Read(kLibrariesValue), "not configured");
    report.Print();
}

}  // namespace

void AddDirectoryCommands(CLI::App& app, const bool& json) {
    CLI::App* command =
        app.add_subcommand("directories", "Show or set where Transports.xml and the transport libraries lie");
    auto catalogue = std::make_shared<std::string>();
    auto libraries = std::make_shared<std::string>();
    command->add_option("--catalogue", *catalogue, "Directory of Transports.xml")
        ->type_name("DIR")
        ->check(NotEmpty());
    command->add_option("--libraries", *libraries, "Directory of the transport libraries")
        ->type_name("DIR")
        ->check(NotEmpty());
    command->footer(
        "Without options it shows what is set. Example:\n"
        "  wn directories --catalogue /etc/wncom --libraries /usr/lib/wncom");
    command->callback([catalogue, libraries, &json] { Run(*catalogue, *libraries, json); });
}

}  // namespace wn
