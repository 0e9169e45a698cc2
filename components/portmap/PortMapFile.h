// The port map's file, read once per change and shared by all objects of the process.
#pragma once

#include <windows.h>

#include <memory>

#include "components/portmap/PortMapData.h"

namespace wncom::components {

// The map as the file says at this moment; any thread may call. The file is named by the registry value
// "portmapfile" (by default "portmap.xml" in the Windows directory) and read again when its size or one of its times
// changed. A missing file is an empty map. A file or a registry value that is damaged gives a failure, told in a line
// on the debugger output at each reading; the map is then null.
HRESULT CurrentPortMap(std::shared_ptr<const PortMapData>& map) noexcept;

}  // namespace wncom::components
