// wn directories: where the catalogue and the transport libraries lie.
#include <CLI/CLI.hpp>
#include <memory>

#include "tools/wn/Command.h"
#include "tools/wn/RegistryKey.h"

namespace wn {
namespace {

constexpr const char* kCatalogueValue = "pathtotransportsxml";
constexpr const char* kLibrariesValue = "builddllpath";
constexpr std::size_t kLongestValue = 1023;  // bytes; what the library reads

// The library puts file names right behind these values, so each must end with its separator.
std::string WithSeparator(std::string directory) {
    char whole[4096];
    const DWORD length = GetFullPathNameA(directory.c_str(), sizeof(whole), whole, nullptr);
    if (length == 0 || length >= sizeof(whole)) throw CommandError("Not a path: " + directory);
    directory = whole;
    const DWORD attributes = GetFileAttributesA(directory.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || !(attributes & FILE_ATTRIBUTE_DIRECTORY)) {
        throw CommandError("No such directory: " + directory);
    }
    if (directory.back() != '\\' && directory.back() != '/') {
        directory += directory.find('/') != std::string::npos ? '/' : '\\';
    }
    if (directory.size() > kLongestValue) throw CommandError("The directory's path is too long: " + directory);
    return directory;
}

void Run(const std::string& catalogue, const std::string& libraries, bool json) {
    if (!catalogue.empty()) kLoggingKey.Write(kCatalogueValue, WithSeparator(catalogue));
    if (!libraries.empty()) kLoggingKey.Write(kLibrariesValue, WithSeparator(libraries));
    Report report(json);
    const std::string none = "not configured";
    const std::string catalogueNow = kLoggingKey.Read(kCatalogueValue).value_or("");
    const std::string librariesNow = kLoggingKey.Read(kLibrariesValue).value_or("");
    report.Add("catalogue", "catalogue", catalogueNow, catalogueNow.empty() ? none : catalogueNow);
    report.Add("libraries", "libraries", librariesNow, librariesNow.empty() ? none : librariesNow);
    report.Print();
}

}  // namespace

void AddDirectoryCommands(CLI::App& app, const bool& json) {
    CLI::App* command =
        app.add_subcommand("directories", "Show or set where Transports.xml and the transport libraries lie");
    auto catalogue = std::make_shared<std::string>();
    auto libraries = std::make_shared<std::string>();
    command->add_option("--catalogue", *catalogue, "Directory of Transports.xml");
    command->add_option("--libraries", *libraries, "Directory of the transport libraries");
    command->callback([catalogue, libraries, &json] { Run(*catalogue, *libraries, json); });
}

}  // namespace wn
