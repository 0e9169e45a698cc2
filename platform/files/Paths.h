// Where the paths of the layer lead on the host.
#pragma once

#include <string>
#include <string_view>

namespace wnplatform {

// As HostPath, for a path in UTF-8.
std::string HostPathFromUtf8(std::string_view path);

// The path of the host by which a function reports it: in the narrow code page.
std::string ReportedPath(std::string_view hostPath);

}  // namespace wnplatform
