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

// The names in a folder that are the wanted one but for case, in byte order, so that the choice does not depend on
// the folder's own order.
std::vector<std::string> OtherNames(const std::string& folder, std::string_view wanted) {
    const std::unique_ptr<DIR, int (*)(DIR*)> directory(opendir(folder.empty() ? "." : folder.c_str()), closedir);
    std::vector<std::string> names;
    if (!directory) return names;
    while (const dirent* entry = readdir(directory.get())) {
        const std::string_view name = entry->d_name;
        if (name != wanted && CompareNames(name, wanted) == 0) names.emplace_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

// Looks for a path whose exact name is absent. A folder of the exact name may be a dead end where one that differs in
// case is not, so each level tries all that match, the exact one first.
class PathSearch {
public:
    explicit PathSearch(std::string_view path) {
        // The home is where it is: its own name needs no search.
        const std::string home = Home() + "/";
        m_deepest = path.starts_with(home) ? home : path.starts_with('/') ? "/" : "";
        m_components = Components(path.substr(m_deepest.size()));
    }

    // What is not there keeps its spelling, below the deepest folder that was found.
    std::string Run() {
        Descend(m_deepest, 0);
        for (; m_level < m_components.size(); ++m_level) m_deepest.append(m_components[m_level]).append("/");
        return m_deepest;
    }

private:
    // Whether all the components from a level on lead somewhere below a folder.
    bool Descend(const std::string& folder, std::size_t level) {
        // With something to come, only a folder leads anywhere.
        if (level > m_level && (level == m_components.size() || Exists(folder))) {
            m_level = level;
            m_deepest = folder;
        }
        if (level == m_components.size()) return true;
        const std::string_view wanted = m_components[level];
        const std::string exact = folder + std::string(wanted);
        if (Exists(exact) && Descend(exact + "/", level + 1)) return true;
        const std::vector<std::string> others = OtherNames(folder, wanted);
        return std::any_of(others.begin(), others.end(),
                           [&](const std::string& name) { return Descend(folder + name + "/", level + 1); });
    }

    std::vector<std::string_view> m_components;
    std::size_t m_level = 0;
    std::string m_deepest;
};

std::string MatchComponents(const std::string& path) {
    std::string matched = PathSearch(path).Run();
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
