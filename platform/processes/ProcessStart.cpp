#include "platform/processes/ProcessStart.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/core/Errors.h"
#include "platform/files/Paths.h"
#include "platform/processes/CommandLine.h"
#include "platform/text/Texts.h"
#include "wnplatform/inspect.h"

namespace wnplatform {
namespace {

namespace fs = std::filesystem;

class SpawnActions {
public:
    SpawnActions() {
        if (posix_spawn_file_actions_init(&m_actions) != 0) throw std::bad_alloc();
    }
    SpawnActions(const SpawnActions&) = delete;
    SpawnActions& operator=(const SpawnActions&) = delete;
    ~SpawnActions() { posix_spawn_file_actions_destroy(&m_actions); }

    posix_spawn_file_actions_t* Get() noexcept { return &m_actions; }
    void Check(int result) const {
        if (result != 0) throw std::bad_alloc();
    }

private:
    posix_spawn_file_actions_t m_actions;
};

class SpawnAttributes {
public:
    explicit SpawnAttributes(bool ownSession) {
        if (posix_spawnattr_init(&m_attributes) != 0) throw std::bad_alloc();
        // What the caller does with signals is its own affair.
        sigset_t signals;
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&m_attributes, &signals);
        sigaddset(&signals, SIGPIPE);
        sigaddset(&signals, SIGXFSZ);
        sigaddset(&signals, SIGCHLD);
        posix_spawnattr_setsigdefault(&m_attributes, &signals);
        const int session = ownSession ? POSIX_SPAWN_SETSID : 0;
        posix_spawnattr_setflags(&m_attributes,
                                 static_cast<short>(POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | session));
    }
    SpawnAttributes(const SpawnAttributes&) = delete;
    SpawnAttributes& operator=(const SpawnAttributes&) = delete;
    ~SpawnAttributes() { posix_spawnattr_destroy(&m_attributes); }

    const posix_spawnattr_t* Get() const noexcept { return &m_attributes; }

private:
    posix_spawnattr_t m_attributes;
};

bool IsFile(const std::string& path) noexcept {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

// The program as it is named, or with the extension that may be left out; as an absolute path, because the new
// process may begin in another folder.
std::optional<std::string> FindIn(const std::string& folder, const std::string& name) {
    for (const char* extension : {"", ".exe"}) {
        const std::string path =
            HostPathFromUtf8(folder.empty() ? name + extension : folder + "/" + name + extension);
        if (IsFile(path)) return fs::absolute(path).string();
    }
    return std::nullopt;
}

// A name without a folder: beside the running program, in the current folder, in the Windows directory, and in the
// search path.
std::optional<std::string> Search(const std::string& name) {
    std::error_code error;
    std::vector<std::string> folders{fs::read_symlink("/proc/self/exe", error).parent_path().string(), ".",
                                     Home() + "/windows"};
    std::string_view path = std::getenv("PATH") ? std::getenv("PATH") : "";
    while (!path.empty()) {
        const std::size_t end = std::min(path.find(':'), path.size());
        folders.emplace_back(path.substr(0, end));
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    for (const std::string& folder : folders) {
        if (folder.empty()) continue;
        if (std::optional<std::string> found = FindIn(folder, name)) return found;
    }
    return std::nullopt;
}

DWORD WhyAbsent(const std::string& name) {
    const std::string path = HostPathFromUtf8(name);
    struct stat status;
    if (stat(path.c_str(), &status) == 0) return ERROR_ACCESS_DENIED;  // a folder, for one
    const fs::path folder = fs::path(path).parent_path();
    std::error_code error;
    return folder.empty() || fs::is_directory(folder, error) ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND;
}

// Texts as the system call takes them; they belong to the vector given.
std::vector<char*> Pointers(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> Texts(LPCSTR block) {
    std::vector<std::string> texts;
    for (; *block; block += std::strlen(block) + 1) texts.push_back(Utf8FromNarrow(block));
    return texts;
}

DWORD Spawn(const std::string& program, std::vector<std::string>& arguments, const std::string& directory,
            const ProgramStart& start, pid_t& process) {
    SpawnActions actions;
    if (start.detached) {
        for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            actions.Check(posix_spawn_file_actions_addopen(actions.Get(), standard, "/dev/null", O_RDWR, 0));
        }
    }
    if (!directory.empty()) {
        actions.Check(posix_spawn_file_actions_addchdir_np(actions.Get(), directory.c_str()));
    }
    // Descriptors that other libraries left open must not keep files and locks alive over there.
    actions.Check(posix_spawn_file_actions_addclosefrom_np(actions.Get(), STDERR_FILENO + 1));
    const SpawnAttributes attributes(start.detached);
    std::vector<std::string> variables;
    if (start.environment) variables = Texts(start.environment);
    const std::vector<char*> environment = Pointers(variables);
    const int error = posix_spawn(&process, program.c_str(), actions.Get(), attributes.Get(),
                                  Pointers(arguments).data(), start.environment ? environment.data() : environ);
    return ErrorFromErrno(error);
}

}  // namespace

DWORD StartProgram(const ProgramStart& start, pid_t& process) {
    const std::string application = start.application ? Utf8FromNarrow(start.application) : std::string();
    std::vector<std::string> arguments =
        start.commandLine ? SplitCommandLine(Utf8FromNarrow(start.commandLine)) : std::vector{application};
    const std::string& name = start.application ? application : arguments.front();
    if (name.empty()) return ERROR_INVALID_PARAMETER;

    std::string directory;
    if (start.directory) {
        directory = HostPath(start.directory);
        std::error_code error;
        if (!fs::is_directory(directory, error)) return ERROR_DIRECTORY;
    }
    const bool bare = name.find_first_of("/\\:") == std::string::npos;
    const std::optional<std::string> program = bare && !start.application ? Search(name) : FindIn("", name);
    if (!program) return WhyAbsent(name);
    return Spawn(*program, arguments, directory, start, process);
}

}  // namespace wnplatform
