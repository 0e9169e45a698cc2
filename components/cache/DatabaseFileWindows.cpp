#include <optional>

#include "common/CodePageText.h"
#include "components/Problem.h"
#include "components/cache/DatabaseFile.h"

namespace wncom::components {

std::string DatabaseFile(const std::string& path) {
    const std::optional<WideText> wide = WidenExactly(CP_ACP, path);
    const std::optional<std::string> utf8 = wide ? NarrowExactly(CP_UTF8, *wide) : std::nullopt;
    if (!utf8) throw Problem(HRESULT_FROM_WIN32(ERROR_INVALID_NAME), "the path is not in the code page");
    return *utf8;
}

}  // namespace wncom::components
