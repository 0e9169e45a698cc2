// Modules write their entries below HKEY_CLASSES_ROOT, which Windows mixes from the machine's part and the user's.
// While a module registers itself it is sent to one of the two, so that what wn reports is what was done.
#include "tools/wn/Registration.h"

#include <oleauto.h>

#include <CLI/CLI.hpp>
#include <cstring>

#include "tools/wn/Command.h"
#include "tools/wn/InputFile.h"

namespace wn {
namespace {

// Type libraries are registered for all users, whatever HKEY_CLASSES_ROOT stands for, until this is called.
void RedirectTypeLibraries() {
    const HMODULE automation = GetModuleHandleA("oleaut32.dll");
    if (!automation) return;
    if (const FARPROC enable = GetProcAddress(automation, "OaEnablePerUserTLibRegistration")) {
        reinterpret_cast<void(STDAPICALLTYPE*)()>(reinterpret_cast<void (*)()>(enable))();
    }
}

class ClassesOf {
public:
    explicit ClassesOf(Audience audience) {
        HKEY classes = nullptr;
        const HKEY root = audience == Audience::Everyone ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
        m_error = RegCreateKeyExA(root, "SOFTWARE\\Classes", 0, nullptr, REG_OPTION_NON_VOLATILE,
                                  KEY_READ | KEY_WRITE | DELETE, nullptr, &classes, nullptr);
        if (m_error != ERROR_SUCCESS) return;
        m_error = RegOverridePredefKey(HKEY_CLASSES_ROOT, classes);
        RegCloseKey(classes);
        RedirectTypeLibraries();
    }
    ClassesOf(const ClassesOf&) = delete;
    ClassesOf& operator=(const ClassesOf&) = delete;
    ~ClassesOf() { RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr); }

    LSTATUS error() const { return m_error; }

private:
    LSTATUS m_error;
};

// 32 or 64 for a module of that bitness, 0 for what is no module.
int BitsOf(const std::string& path) {
    IMAGE_DOS_HEADER start{};
    struct {
        DWORD signature;
        WORD machine;
    } header{};
    const std::string bytes = InputFile(path).ReadAll(256U << 20);
    if (bytes.size() < sizeof(start)) return 0;
    std::memcpy(&start, bytes.data(), sizeof(start));
    const std::size_t at = static_cast<std::size_t>(start.e_lfanew);
    if (start.e_magic != IMAGE_DOS_SIGNATURE || bytes.size() < sizeof(header) || at > bytes.size() - sizeof(header)) {
        return 0;
    }
    std::memcpy(&header, bytes.data() + at, sizeof(header));
    if (header.signature != IMAGE_NT_SIGNATURE) return 0;
    if (header.machine == IMAGE_FILE_MACHINE_I386) return 32;
    return header.machine == IMAGE_FILE_MACHINE_AMD64 ? 64 : 0;
}

}  // namespace

void AddAudienceOption(CLI::App* command, Audience& audience) {
    command->add_flag_callback(
        "--user", [&audience] { audience = Audience::CurrentUser; },
        "For the current user alone, which takes no administrator's rights");
}

std::string NameOf(Audience audience) { return audience == Audience::Everyone ? "all users" : "the current user"; }

HRESULT CallFor(Audience audience, EntryPoint entryPoint) {
    const ClassesOf classes(audience);
    return classes.error() == ERROR_SUCCESS ? entryPoint() : HRESULT_FROM_WIN32(classes.error());
}

std::string AdviceAfter(HRESULT status, Audience audience) {
    if (audience == Audience::CurrentUser || (status != E_ACCESSDENIED && status != TYPE_E_REGISTRYACCESS)) return {};
    return ". To do this for all users takes an administrator's rights; --user does it for you alone";
}

std::string WhyNotLoaded(const std::string& path) {
    constexpr int kOwnBits = static_cast<int>(8 * sizeof(void*));
    try {
        const int bits = BitsOf(path);
        if (bits == 0 || bits == kOwnBits) return {};
        const std::string theirs = std::to_string(bits) + "-bit";
        const std::string program =
            bits == 32 ? "%SystemRoot%\\SysWOW64\\regsvr32.exe" : "%SystemRoot%\\Sysnative\\regsvr32.exe";
        return "It is a " + theirs + " module and this wn a " + std::to_string(kOwnBits) + "-bit program: use the " +
               theirs + " wn, or for all users " + program;
    } catch (const CommandError&) {
        return {};
    }
}

}  // namespace wn
