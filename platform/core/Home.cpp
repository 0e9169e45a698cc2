#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "platform/core/Trust.h"
#include "wnplatform/inspect.h"

namespace wnplatform {
namespace {

namespace fs = std::filesystem;

// An empty variable counts as an unset one.
const char* Variable(const char* name) {
    const char* value = std::getenv(name);
    return value && *value ? value : nullptr;
}

fs::path Choose() {
    if (const char* home = Variable("WNCOM_HOME")) return home;
    const char* state = Variable("XDG_STATE_HOME");
    // The desktop convention says that a relative path there is to be ignored.
    if (state && *state == '/') return fs::path(state) / "wncom";
    if (const char* user = Variable("HOME")) return fs::path(user) / ".local/state/wncom";
    const passwd* account = getpwuid(getuid());
    return fs::path(account ? account->pw_dir : "/") / ".local/state/wncom";
}

std::string Make() {
    std::error_code error;
    fs::path home = fs::absolute(Choose(), error).lexically_normal();
    if (!home.has_filename()) home = home.parent_path();
    // A folder that cannot be made shows when something is looked up in it.
    fs::create_directories(home.parent_path(), error);
    // Whoever may write the home is trusted, and that is nobody's wish for everyone, whatever the umask.
    mkdir(home.c_str(), 0775);
    MakeSharedFolder(home.string(), "windows", Others::Read);
    MakeSharedFolder(home.string(), "drive_c", Others::Read);
    return home.string();
}

}  // namespace

const std::string& Home() {
    static const std::string home = Make();
    return home;
}

}  // namespace wnplatform
