#include "platform/typelib/Loaded.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <map>
#include <mutex>
#include <optional>
#include <utility>

#include "platform/files/Descriptor.h"
#include "platform/typelib/Resource.h"

namespace wnplatform::typelib {
namespace {

struct Kept {
    struct stat state;
    std::shared_ptr<const Library> library;
};

struct Cache {
    std::mutex lock;
    std::map<std::pair<std::string, unsigned>, Kept> kept;
};

Cache& TheCache() {
    // Left to the end of the process, for callers that run while statics are taken down.
    static Cache& cache = *new Cache;
    return cache;
}

bool SameTime(const timespec& a, const timespec& b) noexcept {
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

// The time of the last change tells of a rewritten file even where someone set the other time back.
bool SameFile(const struct stat& a, const struct stat& b) noexcept {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size && SameTime(a.st_mtim, b.st_mtim) &&
           SameTime(a.st_ctim, b.st_ctim);
}

std::shared_ptr<const Library> ReadLibrary(const std::string& hostPath, unsigned resource, struct stat& state) {
    // A pipe that has no writer must not hold up the caller.
    const Descriptor file(open(hostPath.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file || fstat(file.Get(), &state) != 0 || !S_ISREG(state.st_mode)) return nullptr;
    const std::optional<std::string> text =
        ReadResource(file.Get(), static_cast<std::uint64_t>(state.st_size), resource);
    if (!text) return nullptr;
    try {
        return Read(*text);
    } catch (const DescriptionError&) {
        return nullptr;
    }
}

}  // namespace

std::shared_ptr<const Library> LoadedLibrary(const std::string& hostPath, unsigned resource) {
    Cache& cache = TheCache();
    const std::pair<std::string, unsigned> key(hostPath, resource);
    struct stat now {};
    if (stat(hostPath.c_str(), &now) != 0) return nullptr;
    {
        const std::lock_guard guard(cache.lock);
        const auto found = cache.kept.find(key);
        if (found != cache.kept.end() && SameFile(found->second.state, now)) return found->second.library;
    }
    Kept fresh{};
    fresh.library = ReadLibrary(hostPath, resource, fresh.state);
    if (!fresh.library) return nullptr;
    const std::lock_guard guard(cache.lock);
    return (cache.kept[key] = std::move(fresh)).library;
}

std::shared_ptr<const Library> StandardLibrary() { return {std::shared_ptr<void>(), &Standard()}; }

}  // namespace wnplatform::typelib
