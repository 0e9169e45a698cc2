// An open file.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "platform/core/Handles.h"
#include "platform/files/Descriptor.h"

namespace wnplatform {

class FileObject final : public KernelObject {
public:
    static constexpr ObjectKind kKind = ObjectKind::File;

    struct Access {
        bool read;
        bool write;
        bool regular;  // has a size and positions, unlike a terminal or a pipe
        bool owned;    // false for a standard descriptor, which stays open for the rest of the process
    };
    struct Range {
        std::uint64_t offset;
        std::uint64_t length;
    };

    FileObject(Descriptor descriptor, Access granted) noexcept
        : KernelObject(kKind), access(granted), m_descriptor(std::move(descriptor)) {}
    ~FileObject() override {
        if (!access.owned) m_descriptor.Detach();
        const Descriptor forAppending(m_forAppending.load());
    }

    // Its position is where the calls so far have left it.
    int Get() const noexcept {
        if (m_appended.load(std::memory_order_relaxed)) FollowAppends();
        return m_descriptor.Get();
    }
    // As AppendAll.
    std::size_t Append(const void* bytes, std::size_t count) noexcept;

    const Access access;

    // What this handle has locked: the host would merge the ranges of one handle and give back any part of them.
    std::mutex rangesLock;
    std::vector<Range> ranges;  // guarded by rangesLock

private:
    static constexpr int kNotOpened = -1;
    static constexpr int kRefused = -2;

    int OpenForAppending() noexcept;
    void FollowAppends() const noexcept;

    Descriptor m_descriptor;
    // The same file, opened a second time at the first append: the host appends faster to a descriptor that does
    // nothing else.
    std::atomic<int> m_forAppending{kNotOpened};
    mutable std::atomic<bool> m_appended{false};  // the position is that of m_forAppending
};

// The last error for a path that the host refused with errno: a missing folder and a missing file in it differ.
DWORD PathError(int error, const std::string& hostPath) noexcept;

}  // namespace wnplatform
