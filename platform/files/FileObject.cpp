#include "platform/files/FileObject.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

#include "platform/files/Writing.h"

namespace wnplatform {

std::size_t FileObject::Append(const void* bytes, std::size_t count) noexcept {
    int forAppending = m_forAppending.load(std::memory_order_acquire);
    if (forAppending == kNotOpened) forAppending = OpenForAppending();
    if (forAppending == kRefused) return AppendAll(Get(), bytes, count);
    const std::size_t written = WriteAll(forAppending, bytes, count, false);
    m_appended.store(true, std::memory_order_release);
    return written;
}

// Refused where the file's owner has shut it meanwhile, or the host shows no descriptors as files.
int FileObject::OpenForAppending() noexcept {
    char path[32];
    std::snprintf(path, sizeof(path), "/proc/self/fd/%d", m_descriptor.Get());
    Descriptor opened(open(path, O_WRONLY | O_APPEND | O_CLOEXEC));
    int known = kNotOpened;
    if (!m_forAppending.compare_exchange_strong(known, opened ? opened.Get() : kRefused)) return known;
    return opened ? opened.Detach() : kRefused;
}

void FileObject::FollowAppends() const noexcept {
    if (!m_appended.exchange(false, std::memory_order_acquire)) return;
    lseek(m_descriptor.Get(), lseek(m_forAppending.load(), 0, SEEK_CUR), SEEK_SET);
}

}  // namespace wnplatform
