#include "components/portmap/PortMapFile.h"

#include <chrono>
#include <memory>
#include <mutex>
#include <string>

#include "common/Guard.h"
#include "components/ConfiguredPath.h"
#include "components/xml/XmlSource.h"

namespace wncom::components {
namespace {

constexpr PathSetting kSetting = {"SOFTWARE\\Quillbeck\\QBNorvel\\PortMap", "portmapfile", "portmap.xml"};

// Tells one content of the file from the next without reading it.
struct Stamp {
    ULONGLONG size = 0;
    ULONGLONG written = 0;  // in 100 ns
    ULONGLONG created = 0;
    bool operator==(const Stamp&) const = default;
};

ULONGLONG Join(DWORD high, DWORD low) { return static_cast<ULONGLONG>(high) << 32 | low; }

Stamp StampOf(const std::string& path) {
    WIN32_FIND_DATAA found = {};
    const OwnedSearch search(FindFirstFileA(path.c_str(), &found));
    if (!search) return {};
    return {Join(found.nFileSizeHigh, found.nFileSizeLow),
            Join(found.ftLastWriteTime.dwHighDateTime, found.ftLastWriteTime.dwLowDateTime),
            Join(found.ftCreationTime.dwHighDateTime, found.ftCreationTime.dwLowDateTime)};
}

// A file that was written a moment before it was read may have been written again in the same tick of its file
// system's clock, to the same size. Two seconds cover the coarsest clock in use.
bool MayChangeUnseen(const Stamp& stamp) {
    constexpr ULONGLONG kSecond = 10'000'000;
    constexpr ULONGLONG kUnixEpoch = 11'644'473'600 * kSecond;
    using Ticks = std::chrono::duration<ULONGLONG, std::ratio<1, 10'000'000>>;
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    const ULONGLONG now = std::chrono::duration_cast<Ticks>(sinceEpoch).count() + kUnixEpoch;
    return stamp.written + 2 * kSecond > now;
}

PortMapData ReadPortMap(const std::string& path) {
    // An editor may write the file or move another one into its place at any time.
    const OwnedHandle file(CreateFileA(path.c_str(), GENERIC_READ,
                                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                       FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) {
        const DWORD error = GetLastError();
        if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND) return {};
    }
    return ParsePortMap(DecodeXmlFile(ReadFileBytes(file)));
}

class Cache {
public:
    HRESULT Current(std::shared_ptr<const PortMapData>& map) {
        const std::lock_guard lock(m_section);
        std::string path = "port map";
        try {
            path = ConfiguredPath(kSetting);
            Refresh(path);
        } catch (const Problem& problem) {
            OutputDebugStringA(("PortMap: " + path + ": " + problem.what() + "\n").c_str());
            m_map.reset();
            return problem.status();
        }
        map = m_map;
        return S_OK;
    }

private:
    void Refresh(const std::string& path) {
        // Taken first: what changes during the reading shows up as a difference at the next call.
        const Stamp stamp = StampOf(path);
        if (m_map && m_settled && path == m_path && stamp == m_stamp) return;
        m_map = std::make_shared<const PortMapData>(ReadPortMap(path));
        m_path = path;
        m_stamp = stamp;
        m_settled = !MayChangeUnseen(stamp);
    }

    std::mutex m_section;
    std::shared_ptr<const PortMapData> m_map;  // null after a failure
    std::string m_path;
    Stamp m_stamp;
    bool m_settled = false;
};

Cache g_cache;

}  // namespace

HRESULT CurrentPortMap(std::shared_ptr<const PortMapData>& map) noexcept {
    map.reset();
    return Guarded([&] { return g_cache.Current(map); });
}

}  // namespace wncom::components
