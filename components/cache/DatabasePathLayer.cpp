#include "components/cache/DatabasePath.h"
#include "wnplatform/inspect.h"

namespace wncom::components {

std::string DatabasePath(const std::string& path) { return wnplatform::HostPath(path.c_str()); }

}  // namespace wncom::components
