// Windows: the home is the machine itself.
#include "tools/wn/host/Host.h"

#include <fcntl.h>
#include <io.h>
#include <oleauto.h>
#include <shellapi.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <memory>

#include "tools/wn/core/CommandError.h"
#include "tools/wn/core/InputFile.h"
#include "tools/wn/core/Texts.h"
#include "tools/wn/settings/RegistryKey.h"
#include "wncom/wnCOM.h"

namespace wn {
namespace {

struct LocalMemoryFree {
    void operator()(LPWSTR* memory) const { LocalFree(memory); }
};

constexpr int kOwnBits = static_cast<int>(8 * sizeof(void*));

int g_chosenBits = 0;  // 0: no option was given

REGSAM AccessTo(int bits) { return bits == 64 ? KEY_WOW64_64KEY : KEY_WOW64_32KEY; }

bool HasLibrary(int bits) {
    OLECHAR clsid[39];
    StringFromGUID2(wncom::CLSID_WendrelParent, clsid, static_cast<int>(std::size(clsid)));
    const std::string path = "SOFTWARE\\Classes\\CLSID\\" + ToUtf8(clsid) + "\\InprocServer32";
    for (const HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
        HKEY key = nullptr;
        if (RegOpenKeyExA(root, path.c_str(), 0, KEY_QUERY_VALUE | AccessTo(bits), &key) != ERROR_SUCCESS) continue;
        RegCloseKey(key);
        return true;
    }
    return false;
}

struct View {
    int bits;
    Setting::From from;
    const char* reason;
};

// Without the option it is the view in which wnCOM is registered, so that a wn of 64 bits configures a library of 32
// where that one looks.
View CurrentView() {
    if (g_chosenBits != 0) return {g_chosenBits, Setting::From::CommandLine, "option --view"};
    if (HasLibrary(32)) return {32, Setting::From::System, "wnCOM is registered there"};
    if (HasLibrary(64)) return {64, Setting::From::System, "wnCOM is registered there only"};
    return {kOwnBits, Setting::From::System, "that of this wn, for wnCOM is not registered"};
}

// Type libraries are registered for all users, whatever HKEY_CLASSES_ROOT stands for, until this is called.
void RedirectTypeLibraries() {
    const HMODULE automation = GetModuleHandleA("oleaut32.dll");
    if (!automation) return;
    if (const FARPROC enable = GetProcAddress(automation, "OaEnablePerUserTLibRegistration")) {
        reinterpret_cast<void(STDAPICALLTYPE*)()>(reinterpret_cast<void (*)()>(enable))();
    }
}

// Modules write their entries below HKEY_CLASSES_ROOT, which Windows mixes from the machine's part and the user's.
// While a module registers itself it is sent to one of the two, so that what wn reports is what was done.
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

// main's own arguments have lost what the narrow code page lacks; the wide command line has everything.
std::vector<std::string> Arguments(int argc, char** argv) {
    int count = 0;
    const std::unique_ptr<LPWSTR, LocalMemoryFree> wide(CommandLineToArgvW(GetCommandLineW(), &count));
    if (!wide) return {argv, argv + argc};
    std::vector<std::string> arguments;
    for (int i = 0; i < count; ++i) arguments.push_back(ToUtf8(wide.get()[i]));
    return arguments;
}

// The console belongs to other programs too: they get back what they had.
Utf8Terminal::Utf8Terminal() : m_previous(GetConsoleOutputCP()) {
    if (m_previous != 0) SetConsoleOutputCP(CP_UTF8);
}

Utf8Terminal::~Utf8Terminal() {
    if (m_previous != 0) SetConsoleOutputCP(m_previous);
}

bool IsTerminal(StandardStream stream) { return _isatty(stream == StandardStream::Output ? 1 : 2) != 0; }

void ReadStandardInputAsBytes() { _setmode(_fileno(stdin), _O_BINARY); }

std::string DescribeHome() {
    return "this machine, registry view of " + std::to_string(CurrentView().bits) + " bits";
}

// Windows keeps its registry in order by itself.
void RequireSoundRegistry() {}

void AddHostSettings(Settings& settings) {
    const UINT page = GetACP();
    settings.push_back(
        {"codePage", "code page", page, std::to_string(page), Setting::From::Registry, kCodePageKey.place("ACP")});
}

void AddViewOption(CLI::App& app) {
    app.add_option(
           "--view", g_chosenBits,
           "Settings of 32-bit or of 64-bit libraries (default: those of the registered wnCOM.dll, of the 32-bit "
           "one when there are both)")
        ->type_name("32|64")
        ->check(CLI::IsMember({32, 64}).description(""));
}

REGSAM ViewAccess() { return AccessTo(CurrentView().bits); }

void AddViewSetting(Settings& settings) {
    const View view = CurrentView();
    settings.push_back(
        {"registryView", "registry view", view.bits, std::to_string(view.bits) + " bits", view.from, view.reason});
}

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
    return "To do this for all users takes an administrator's rights; --user does it for you alone";
}

std::string WhyNotLoaded(const std::string& path) {
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
