#include "tools/wn/settings/Catalogue.h"

#include <windows.h>

#include <algorithm>
#include <pugixml.hpp>

#include "common/Owned.h"
#include "components/Problem.h"
#include "components/xml/XmlParse.h"
#include "components/xml/XmlSource.h"
#include "tools/wn/core/CommandError.h"
#include "tools/wn/core/InputFile.h"
#include "tools/wn/core/Paths.h"
#include "tools/wn/host/Host.h"
#include "tools/wn/settings/RegistryKey.h"

namespace wn {
namespace {

[[noreturn]] void Fail(const std::string& what, const std::string& reason, const std::string& hint) {
    throw CommandError(what, {.reason = reason, .hint = hint, .exit = ExitStatus::NotSetUp});
}

std::string Directory(const char* value, const char* what, const char* option) {
    const std::string directory = kLoggingKey.Read(value).value_or("");
    if (directory.empty()) {
        Fail(std::string("The directory of the ") + what + " is not configured", "",
             std::string("'wn directories --") + option + " DIR' sets it");
    }
    return directory;
}

}  // namespace

const TransportEntry* Catalogue::Find(const std::string& transport) const {
    const std::string& type = transport.empty() || transport == "network" ? networkMapping : transport;
    const auto found =
        std::find_if(entries.begin(), entries.end(), [&](const TransportEntry& entry) { return entry.type == type; });
    return found == entries.end() ? nullptr : &*found;
}

std::string CatalogueDirectory() { return Directory("pathtotransportsxml", "catalogue", "catalogue"); }
std::string LibraryDirectory() { return Directory("builddllpath", "transport libraries", "libraries"); }

Catalogue ReadCatalogue(const std::string& directory) {
    const std::string path = directory + kCatalogueFile;
    const std::string what = "The catalogue " + path + " cannot be used";
    const std::string hint = "Correct the file, or name another directory: 'wn directories --catalogue DIR'";
    if (!Exists(path)) Fail(what, "There is no such file", hint);
    Catalogue catalogue;
    try {
        using namespace wncom::components;
        pugi::xml_document document;
        const std::string text = DecodeXmlFile(InputFile(path).ReadAll(kXmlLimit));
        const pugi::xml_node root = ParseXml(text, document);
        if (!root.child("networkmapping")) Fail(what, "It has no networkmapping", hint);
        if (!root.child("path")) Fail(what, "It has no path", hint);
        catalogue.networkMapping = root.child("networkmapping").text().get();
        for (const pugi::xml_node entry : root.child("transportdlls").child("jobcontrol").children("dll")) {
            // The library reads no further than an entry that lacks something.
            const std::string place = "The dll element " + std::to_string(catalogue.entries.size() + 1);
            if (!entry.child("type")) Fail(what, place + " has no type", hint);
            if (!entry.child("name")) Fail(what, place + " has no name", hint);
            catalogue.entries.push_back({entry.child("type").text().get(), entry.child("name").text().get()});
        }
    } catch (const wncom::components::Problem& problem) {
        Fail(what, problem.what(), hint);
    }
    if (!catalogue.Find("")) Fail(what, "It has no dll of its network mapping " + catalogue.networkMapping, hint);
    return catalogue;
}

void RequireLibraryFile(const std::string& directory, const std::string& library) {
    if (Exists(directory + library)) return;
    Fail("The transport library " + directory + library + " cannot be used", "There is no such file",
         "Put it there, or name another directory: 'wn directories --libraries DIR'");
}

void CheckTransportLibrary(const std::string& directory, const std::string& library) {
    RequireLibraryFile(directory, library);
    const std::string path = directory + library;
    const std::string what = "The transport library " + path + " cannot be used";
    const wncom::OwnedModule module(LoadLibraryA(NarrowPath(path).c_str()));
    if (!module) {
        const std::string error = ErrorText(GetLastError());
        const std::string why = WhyNotLoaded(path);
        Fail(what, why.empty() ? error : why, "Install the library again, for this system and bitness");
    }
    for (const char* name : {"maker", "demaker"}) {
        if (!GetProcAddress(module.get(), name)) {
            Fail(what, std::string("It does not export ") + name, "Name a transport library in the catalogue");
        }
    }
}

}  // namespace wn
