// The catalogue of transport libraries, as the library reads it.
#pragma once

#include <string>
#include <vector>

namespace wn {

struct TransportEntry {
    std::string type;
    std::string library;  // file name in the directory of the libraries
};

struct Catalogue {
    std::string networkMapping;  // the type that reaches network services
    std::vector<TransportEntry> entries;

    // The entry for a transport of the port map, where nothing and "network" stand for the network mapping; null when
    // there is none.
    const TransportEntry* Find(const std::string& transport) const;
};

inline constexpr const char* kCatalogueFile = "Transports.xml";

// The configured directories, each with its separator at the end. Throw CommandError when nothing is configured.
std::string CatalogueDirectory();
std::string LibraryDirectory();

// Reads the catalogue in a directory that ends with its separator. Throws CommandError with the path and the reason,
// for each fault that leaves the library without a transport.
Catalogue ReadCatalogue(const std::string& directory);

// Throws CommandError unless the library's file is there.
void RequireLibraryFile(const std::string& directory, const std::string& library);
// Also loads the library and looks for what it must export.
void CheckTransportLibrary(const std::string& directory, const std::string& library);

}  // namespace wn
