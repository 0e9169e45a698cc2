// Type libraries by their identities: their entries in the registry.
//
// Under HKEY_CLASSES_ROOT: TypeLib\{identity}\major.minor (both hexadecimal) holds the help text, and its subkeys
// "lcid\win32" the path (the library's locale in hexadecimal; a 32-bit system whatever the host), FLAGS and HELPDIR.
#include <charconv>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>

#include "oleauto.h"
#include "platform/com/GuidText.h"
#include "platform/core/Guarded.h"
#include "platform/text/Texts.h"
#include "platform/typelib/Loading.h"
#include "winerror.h"
#include "winreg.h"

namespace wnplatform::typelib {
namespace {

constexpr WORD kAnyVersion = 0xFFFF;

struct CloseKey {
    void operator()(HKEY key) const noexcept { RegCloseKey(key); }
};
using Key = std::unique_ptr<std::remove_pointer_t<HKEY>, CloseKey>;

Key OpenClasses(const std::string& name) {
    HKEY key = nullptr;
    return Key(RegOpenKeyExA(HKEY_CLASSES_ROOT, name.c_str(), 0, KEY_READ, &key) == ERROR_SUCCESS ? key : nullptr);
}

// The default value of a key, in the narrow code page; none when the key or the text is absent.
std::optional<std::string> ReadText(const std::string& name) {
    const Key key = OpenClasses(name);
    std::string text(MAX_PATH, '\0');
    LSTATUS status = key ? ERROR_MORE_DATA : ERROR_FILE_NOT_FOUND;
    for (DWORD size = MAX_PATH; status == ERROR_MORE_DATA;) {
        DWORD type = REG_NONE;
        text.assign(size, '\0');
        status = RegQueryValueExA(key.get(), nullptr, nullptr, &type, reinterpret_cast<BYTE*>(text.data()), &size);
        if (status == ERROR_SUCCESS && type != REG_SZ) return std::nullopt;
    }
    if (status != ERROR_SUCCESS) return std::nullopt;
    // The data may or may not hold a terminator.
    return text.substr(0, text.find('\0'));
}

bool WriteText(const std::string& name, const std::string& text) {
    HKEY made = nullptr;
    if (RegCreateKeyExA(HKEY_CLASSES_ROOT, name.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_WRITE, nullptr,
                        &made, nullptr) != ERROR_SUCCESS) {
        return false;
    }
    const Key key(made);
    return RegSetValueExA(key.get(), nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                          static_cast<DWORD>(text.size() + 1)) == ERROR_SUCCESS;
}

// None behind the last one.
std::optional<std::string> SubkeyAt(const Key& key, DWORD index) {
    char name[256];
    DWORD length = sizeof(name);
    if (!key || RegEnumKeyExA(key.get(), index, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    return std::string(name, length);
}

std::string LibraryKey(REFGUID guid) {
    const auto text = TextOfGuid(guid);
    return "TypeLib\\" + std::string(text.data(), text.size());
}

std::string VersionKey(WORD major, WORD minor) {
    char text[16];
    std::snprintf(text, sizeof(text), "%x.%x", unsigned{major}, unsigned{minor});
    return text;
}

std::string PathKey(LCID locale) {
    char text[32];
    std::snprintf(text, sizeof(text), "\\%x\\win32", unsigned{locale});
    return text;
}

// The path for the locale, or else for its language, or else for a library without one.
std::optional<std::string> LocalisedPath(const std::string& version, LCID locale) {
    constexpr LCID kLanguageBits = 0x3FF;
    for (const LCID wanted : {locale, locale & kLanguageBits, LCID{0}}) {
        if (auto path = ReadText(version + PathKey(wanted))) return path;
    }
    return std::nullopt;
}

std::optional<std::pair<WORD, WORD>> ParseVersion(const std::string& text) {
    WORD major = 0;
    WORD minor = 0;
    const char* last = text.data() + text.size();
    const auto dot = std::from_chars(text.data(), last, major, 16);
    if (dot.ec != std::errc() || dot.ptr == last || *dot.ptr != '.') return std::nullopt;
    const auto end = std::from_chars(dot.ptr + 1, last, minor, 16);
    if (end.ec != std::errc() || end.ptr != last) return std::nullopt;
    return std::pair(major, minor);
}

// The path that is registered for the version, or for the highest later one of the same major number.
std::optional<std::string> RegisteredPath(REFGUID guid, WORD major, WORD minor, LCID locale) {
    const std::string library = LibraryKey(guid);
    if (auto path = LocalisedPath(library + "\\" + VersionKey(major, minor), locale)) return path;
    std::optional<std::pair<WORD, WORD>> best;
    const Key versions = OpenClasses(library);
    for (DWORD index = 0; const auto name = SubkeyAt(versions, index); ++index) {
        const auto version = ParseVersion(*name);
        if (!version || (major != kAnyVersion && (version->first != major || version->second < minor))) continue;
        if (!best || *version > *best) best = version;
    }
    if (!best) return std::nullopt;
    return LocalisedPath(library + "\\" + VersionKey(best->first, best->second), locale);
}

std::string NarrowText(LPCOLESTR text) { return text ? NarrowFromUtf8(Utf8FromWide(text)) : std::string(); }

}  // namespace
}  // namespace wnplatform::typelib

using namespace wnplatform;
using namespace wnplatform::typelib;

HRESULT LoadRegTypeLib(REFGUID guid, WORD major, WORD minor, LCID locale, ITypeLib** library) {
    if (!library) return E_INVALIDARG;
    *library = nullptr;
    return Guarded(E_OUTOFMEMORY, [&]() -> HRESULT {
        const std::optional<std::string> path = RegisteredPath(guid, major, minor, locale);
        if (!path) return TYPE_E_LIBNOTREGISTERED;
        return LoadFrom(Utf8FromNarrow(*path), library);
    });
}

HRESULT RegisterTypeLib(ITypeLib* library, LPCOLESTR fullPath, LPCOLESTR helpDirectory) {
    if (!library || !fullPath) return E_INVALIDARG;
    TLIBATTR* given = nullptr;
    HRESULT hr = library->GetLibAttr(&given);
    if (FAILED(hr)) return hr;
    const TLIBATTR attributes = *given;
    library->ReleaseTLibAttr(given);
    BSTR help = nullptr;
    hr = library->GetDocumentation(-1, nullptr, &help, nullptr, nullptr);
    if (FAILED(hr)) return hr;
    hr = Guarded(E_OUTOFMEMORY, [&] {
        const std::string version =
            LibraryKey(attributes.guid) + "\\" + VersionKey(attributes.wMajorVerNum, attributes.wMinorVerNum);
        // That it came from a file is nothing that the library says of itself.
        const unsigned flags = attributes.wLibFlags & ~unsigned{LIBFLAG_FHASDISKIMAGE};
        const bool written = WriteText(version, NarrowText(help)) &&
                             WriteText(version + "\\FLAGS", std::to_string(flags)) &&
                             WriteText(version + PathKey(attributes.lcid), NarrowText(fullPath)) &&
                             WriteText(version + "\\HELPDIR", NarrowText(helpDirectory));
        return written ? S_OK : TYPE_E_REGISTRYACCESS;
    });
    SysFreeString(help);
    return hr;
}

HRESULT UnRegisterTypeLib(REFGUID guid, WORD major, WORD minor, LCID locale, SYSKIND system) {
    if (system != SYS_WIN32) return E_INVALIDARG;
    return Guarded(E_OUTOFMEMORY, [&] {
        const std::string library = LibraryKey(guid);
        const std::string version = library + "\\" + VersionKey(major, minor);
        if (!ReadText(version + PathKey(locale))) return TYPE_E_REGISTRYACCESS;
        if (RegDeleteTreeA(HKEY_CLASSES_ROOT, version.c_str()) != ERROR_SUCCESS) return TYPE_E_REGISTRYACCESS;
        // Other versions keep the library's key.
        if (!SubkeyAt(OpenClasses(library), 0)) RegDeleteTreeA(HKEY_CLASSES_ROOT, library.c_str());
        return S_OK;
    });
}
