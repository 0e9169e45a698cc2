#include "platform/typelib/Resource.h"

#include <link.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string_view>
#include <vector>

namespace wnplatform::typelib {
namespace {

constexpr std::uint64_t kMostBytes = 1 << 20;

using Header = ElfW(Ehdr);
using Section = ElfW(Shdr);

// A module of this host, read section by section. Nothing in it is believed before it is held against the file's
// size, and it is never mapped: a file that shrinks meanwhile is a short read and no signal.
class Module {
public:
    Module(int file, std::uint64_t size) : m_file(file), m_size(size) {}

    std::optional<std::string> SectionNamed(std::string_view name) {
        if (!ReadHeader()) return std::nullopt;
        const std::optional<std::string> names = Contents(m_sections[m_header.e_shstrndx]);
        if (!names) return std::nullopt;
        for (const Section& section : m_sections) {
            if (section.sh_name >= names->size()) continue;
            const std::string_view rest = std::string_view(*names).substr(section.sh_name);
            if (rest.substr(0, rest.find('\0')) == name) return Contents(section);
        }
        return std::nullopt;
    }

private:
    bool ReadAt(void* buffer, std::uint64_t offset, std::uint64_t bytes) const {
        if (offset > m_size || bytes > m_size - offset) return false;
        char* to = static_cast<char*>(buffer);
        while (bytes > 0) {
            const ssize_t count = pread(m_file, to, bytes, static_cast<off_t>(offset));
            if (count < 0 && errno == EINTR) continue;
            if (count <= 0) return false;
            to += count;
            offset += static_cast<std::uint64_t>(count);
            bytes -= static_cast<std::uint64_t>(count);
        }
        return true;
    }

    bool ReadHeader() {
        const unsigned char hostClass = sizeof(void*) == 8 ? ELFCLASS64 : ELFCLASS32;
        const unsigned char hostOrder = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? ELFDATA2LSB : ELFDATA2MSB;
        if (!ReadAt(&m_header, 0, sizeof(m_header))) return false;
        if (m_header.e_ident[EI_CLASS] != hostClass || m_header.e_ident[EI_DATA] != hostOrder) return false;
        if (m_header.e_shentsize != sizeof(Section) || m_header.e_shstrndx >= m_header.e_shnum) return false;
        m_sections.resize(m_header.e_shnum);
        return ReadAt(m_sections.data(), m_header.e_shoff, m_sections.size() * sizeof(Section));
    }

    std::optional<std::string> Contents(const Section& section) const {
        if (section.sh_type == SHT_NOBITS || section.sh_size > kMostBytes) return std::nullopt;
        std::string contents(section.sh_size, '\0');
        if (!ReadAt(contents.data(), section.sh_offset, contents.size())) return std::nullopt;
        return contents;
    }

    int m_file;
    std::uint64_t m_size;
    Header m_header{};
    std::vector<Section> m_sections;
};

}  // namespace

std::optional<std::string> ReadResource(int file, std::uint64_t fileSize) {
    char magic[SELFMAG] = {};
    if (pread(file, magic, sizeof(magic), 0) == SELFMAG && std::memcmp(magic, ELFMAG, SELFMAG) == 0) {
        return Module(file, fileSize).SectionNamed(".wnres.TYPELIB.1");
    }
    if (fileSize > kMostBytes) return std::nullopt;
    std::string bytes(fileSize, '\0');
    if (pread(file, bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) return std::nullopt;
    return bytes;
}

}  // namespace wnplatform::typelib
