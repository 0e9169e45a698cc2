#include "platform/files/Paths.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "platform/text/CaseFold.h"
#include "platform/text/Texts.h"
#include "wnplatform/inspect.h"

namespace wnplatform {
namespace {

bool Exists(const std::string& path) {
    struct stat unused;
    return lstat(path.c_str(), &unused) == 0;
}

std::vector<std::string_view> Components(std::string_view path) {
    std::vector<std::string_view> result;
    while (!path.empty()) {
        const std::size_t end = std::min(path.find('/'), path.size());
        if (end > 0) result.push_back(path.substr(0, end));
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return result;
}

// A drive is a folder of the home; only C is ever made, so that others lead to nothing. As on a drive, ".." ends at
// its root.
std::string InDrive(char letter, std::string_view path) {
    std::vector<std::string_view> kept;
    for (const std::string_view component : Components(path)) {
        if (component == ".") continue;
        if (component != "..") {
            kept.push_back(component);
        } else if (!kept.empty()) {
            kept.pop_back();
        }
    }
    std::string result = Home() + "/drive_" + static_cast<char>(letter | 0x20);
    for (const std::string_view component : kept) result.append("/").append(component);
    if (!path.empty() && path.back() == '/') result += '/';
    return result;
}

std::string TurnToHost(std::string_view path) {
    std::string turned(path);
    std::replace(turned.begin(), turned.end(), '\\', '/');
    const char first = turned.empty() ? '\0' : static_cast<char>(turned[0] | 0x20);
    if (turned.size() >= 2 && turned[1] == ':' && first >= 'a' && first <= 'z') {
        return InDrive(first, std::string_view(turned).substr(2));
    }
    return path.starts_with('\\') ? InDrive('c', turned) : turned;
}

// The name in a folder that is the wanted one but for case: of several the first in byte order, so that the choice
// does not depend on the folder's own order. Empty when there is none.
std::string FindName(const std::string& folder, std::string_view wanted) {
    const std::unique_ptr<DIR, int (*)(DIR*)> directory(opendir(folder.empty() ? "." : folder.c_str()), closedir);
    std::string found;
    if (!directory) return found;
    while (const dirent* entry = readdir(directory.get())) {
        const std::string_view name = entry->d_name;
        if (CompareNames(name, wanted) == 0 && (found.empty() || name < found)) found = name;
    }
    return found;
}

// Only components from the first absent one on are searched for in their folders.
std::string MatchComponents(const std::string& path) {
    std::string matched = path.starts_with('/') ? "/" : "";
    bool searching = true;
    for (const std::string_view component : Components(path)) {
        std::string next = matched;
        next += component;
        if (searching && !Exists(next)) {
            const std::string name = FindName(matched, component);
            searching = !name.empty();
            if (searching) next = matched + name;
        }
        matched = std::move(next) + '/';
    }
    if (!path.ends_with('/')) matched.pop_back();
    return matched;
}

}  // namespace

std::string HostPathFromUtf8(std::string_view path) {
    std::string host = TurnToHost(path);
    return host.empty() || Exists(host) ? host : MatchComponents(host);
}

std::string HostPath(const char* path) {
    if (!path) return {};
    return IsAscii(path) ? HostPathFromUtf8(path) : HostPathFromUtf8(Utf8FromNarrow(path));
}

std::string HostPath(const WCHAR* path) { return path ? HostPathFromUtf8(Utf8FromWide(path)) : std::string(); }

std::string ReportedPath(std::string_view hostPath) {
    return IsAscii(hostPath) ? std::string(hostPath) : NarrowFromUtf8(hostPath);
}

}  // namespace wnplatform
