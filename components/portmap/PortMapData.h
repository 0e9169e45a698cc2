// What the port map's file says: devices and their services, in the file's order.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

#include "common/CodePageText.h"

namespace wncom::components {

struct ServiceData {
    WideText name;  // may be empty
    WideText address;
    WideText transport;  // may be empty: the service is reached over the network
};

struct DeviceData {
    WideText name;  // may be empty
    std::vector<ServiceData> services;
};

struct PortMapData {
    std::vector<DeviceData> devices;
};

// Reads the document, given in UTF-8. What it does not know is an error: a misspelt name must not read as something
// left out. Throws Problem with the place.
PortMapData ParsePortMap(std::string_view source);

}  // namespace wncom::components
