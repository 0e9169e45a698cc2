#include "platform/processes/ModuleFiles.h"

#include <elf.h>
#include <fcntl.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

#include "platform/core/Errors.h"
#include "platform/files/Descriptor.h"
#include "winbase.h"
#include "wnplatform/inspect.h"

namespace wnplatform {
namespace {

struct Freer {
    void operator()(char* text) const noexcept { std::free(text); }
};

std::string Canonical(const std::string& path) {
    const std::unique_ptr<char, Freer> real(realpath(path.c_str(), nullptr));
    return real ? real.get() : std::string();
}

bool IsFile(const std::string& path) {
    struct stat file;
    return stat(path.c_str(), &file) == 0 && S_ISREG(file.st_mode);
}

std::string ProgramFolder() {
    const std::string program = Canonical("/proc/self/exe");
    return program.substr(0, program.rfind('/'));
}

// The file of a bare name in a folder of the host, its case matched as in any path.
std::string InFolder(std::string_view folder, const std::string& name) {
    std::string path(folder);
    // A relative folder must not read as a path of another kind.
    path = HostPath((path.starts_with('/') ? path : "./" + path).append("/").append(name).c_str());
    return IsFile(path) ? path : std::string();
}

std::string Search(const std::string& name) {
    for (const std::string& folder : {ProgramFolder(), Home() + "/windows", std::string(".")}) {
        if (std::string found = InFolder(folder, name); !found.empty()) return found;
    }
    const char* variable = std::getenv("PATH");
    std::string_view rest = variable ? variable : "";
    while (!rest.empty()) {
        const std::string_view folder = rest.substr(0, rest.find(':'));
        rest.remove_prefix(std::min(folder.size() + 1, rest.size()));
        if (folder.empty()) continue;
        if (std::string found = InFolder(folder, name); !found.empty()) return found;
    }
    return {};
}

template <class Record>
bool ReadRecord(const Descriptor& file, std::size_t offset, Record& record) {
    return pread(file.Get(), &record, sizeof record, static_cast<off_t>(offset)) == sizeof record;
}

// The program's own header is the pattern that a module must fit.
bool FitsProgram(const ElfW(Ehdr) & header) {
    ElfW(Ehdr) own;
    const Descriptor program(open("/proc/self/exe", O_RDONLY | O_CLOEXEC));
    return program && ReadRecord(program, 0, own) && std::memcmp(header.e_ident, own.e_ident, EI_VERSION + 1) == 0 &&
           header.e_machine == own.e_machine && header.e_type == ET_DYN && header.e_phentsize == own.e_phentsize;
}

// The linker maps what the file says it holds, and dies of what is then missing.
bool HoldsItsSegments(const Descriptor& file, const ElfW(Ehdr) & header) {
    struct stat whole;
    if (fstat(file.Get(), &whole) != 0) return false;
    const auto size = static_cast<std::size_t>(whole.st_size);
    for (std::size_t i = 0; i < header.e_phnum; ++i) {
        ElfW(Phdr) segment;
        if (!ReadRecord(file, header.e_phoff + i * sizeof segment, segment)) return false;
        if (segment.p_type == PT_LOAD && (segment.p_filesz > size || segment.p_offset > size - segment.p_filesz)) {
            return false;
        }
    }
    return true;
}

}  // namespace

std::string ModuleFileName(std::string_view path) {
    std::string name(path);
    const std::size_t folder = name.find_last_of("\\/");
    const std::size_t base = folder == std::string::npos ? 0 : folder + 1;
    if (name.find('.', base) == std::string::npos) return name + ".dll";
    if (name.ends_with('.')) name.pop_back();
    return name;
}

bool IsBareName(std::string_view name) noexcept { return name.find_first_of("\\/:") == std::string_view::npos; }

std::string FindModuleFile(const std::string& name) {
    const std::string found = IsBareName(name) ? Search(name) : HostPath(name.c_str());
    return IsFile(found) ? Canonical(found) : std::string();
}

DWORD CheckModuleFile(const std::string& file) {
    const Descriptor module(open(file.c_str(), O_RDONLY | O_CLOEXEC));
    if (!module) return ErrorFromErrno(errno);
    ElfW(Ehdr) header;
    const bool sound = ReadRecord(module, 0, header) && FitsProgram(header) && HoldsItsSegments(module, header);
    return sound ? DWORD{ERROR_SUCCESS} : DWORD{ERROR_BAD_EXE_FORMAT};
}

DWORD ErrorFromLinker(std::string_view text) noexcept {
    if (text.find("undefined symbol") != std::string_view::npos) return ERROR_PROC_NOT_FOUND;
    // Opening one of the modules that it needs.
    if (text.find("cannot open shared object file") != std::string_view::npos) return ERROR_MOD_NOT_FOUND;
    return ERROR_BAD_EXE_FORMAT;
}

}  // namespace wnplatform
