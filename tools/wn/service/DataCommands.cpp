// wn data: the device data of a service.
#include <CLI/CLI.hpp>
#include <memory>

#include "tools/wn/core/Command.h"
#include "tools/wn/core/Report.h"
#include "tools/wn/core/TextFile.h"
#include "tools/wn/core/Texts.h"
#include "tools/wn/service/Agent.h"

namespace wn {
namespace {

using wncom::Bstr;

struct Options {
    Service service;
    std::string path;
    std::string prefixes;
    std::string output;
    std::string file;
};

void Get(const Options& options, bool json) {
    const Bstr path = FromUtf8(options.path, "The path");
    const Bstr prefixes = FromUtf8(options.prefixes, "The prefixes");
    const Agent agent(options.service, json);
    Bstr said;
    Bstr document;
    agent.Call("Cannot read " + options.path + " from", said, [&] {
        return agent.As<wncom::IWNXDMAccess>()->GetData(path.get(), prefixes.get(), said.put(), document.put());
    });

    Report report(json);
    const std::string text = ToUtf8(document.view());
    if (!options.output.empty()) {
        WriteTextFile(options.output, text);
        report.Add("file", "file", options.output);
    } else {
        report.AddDocument("document", text);
    }
    report.Print();
}

void Set(const Options& options, bool json) {
    const Bstr document = ReadDocument(options.file);
    const Agent agent(options.service, json);
    Bstr said;
    // Failure details cost nothing where all is well; where it is not, they say which value was refused.
    agent.Call("The values of " + options.file + " were not set at", said,
               [&] { return agent.As<wncom::IWNXDMAccess>()->SetData(document.get(), 1, said.put()); });

    Report report(json);
    report.Add("set", "set", options.file);
    const std::string words = ToUtf8(said.view());
    if (said) report.AddDocument("details", words);
    report.Print();
}

}  // namespace

void AddDataCommands(CLI::App& app, const bool& json) {
    CLI::App* data = app.add_subcommand("data", "Read and write the device data of a service");
    data->require_subcommand(1);
    data->footer("'wn data COMMAND --help' tells more.");
    auto options = std::make_shared<Options>();

    CLI::App* get = data->add_subcommand("get", "Read what a path selects");
    AddArgument(get, "PATH", options->path, "Path into the device data, such as an XPath expression");
    get->add_option("--prefixes", options->prefixes, "Namespaces of the prefixes in the path: p=urn:x;q=urn:y")
        ->type_name("TEXT")
        ->check(NotEmpty());
    get->add_option("--output", options->output, "Write the document into this file instead of showing it")
        ->type_name("FILE")
        ->check(NotEmpty());
    AddServiceOptions(get, options->service);
    get->footer(
        "Example:\n"
        "  wn data get \"//d:tray[@id='2']/d:sheets\" --prefixes d=urn:wncom:device-data \\\n"
        "      --to http://127.0.0.1:8631/service");
    get->callback([options, &json] { Get(*options, json); });

    CLI::App* set = data->add_subcommand("set", "Write the values of a set document");
    AddArgument(set, "FILE", options->file, "Set document, an XML file in UTF-8");
    AddServiceOptions(set, options->service);
    set->footer(
        "The service sets all values or none. Why it refused one is in the log: 'wn logging --help'. A document:\n"
        "  <setData>\n"
        "    <prefixes>d=urn:wncom:device-data</prefixes>\n"
        "    <set><path>//d:tray[@id='2']/d:sheets</path><value>1800</value></set>\n"
        "  </setData>\n"
        "Example:\n"
        "  wn data set values.xml --to http://127.0.0.1:8631/service");
    set->callback([options, &json] { Set(*options, json); });
}

}  // namespace wn
