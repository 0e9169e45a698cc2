#include <optional>

#include "components/Problem.h"
#include "components/Utf8.h"
#include "components/cache/DatabasePath.h"

namespace wncom::components {

std::string DatabasePath(const std::string& path) {
    const std::optional<WideText> wide = FromCodePage(CP_ACP, path);
    const std::optional<std::string> utf8 = wide ? ToUtf8(*wide) : std::nullopt;
    if (!utf8) throw Problem(HRESULT_FROM_WIN32(ERROR_INVALID_NAME), "the path is not in the code page");
    return *utf8;
}

}  // namespace wncom::components
