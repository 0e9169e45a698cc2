// Type libraries by their identities: their entries in the registry.
//
// Under HKEY_CLASSES_ROOT: TypeLib\{identity}\major.minor (both hexadecimal) holds the help text, and its subkeys
// "lcid\win32" the path (the library's locale in hexadecimal; a 32-bit system whatever the host), FLAGS and HELPDIR.
#include <charconv>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "oleauto.h"
#include "platform/core/Guarded.h"
#include "platform/text/Texts.h"
#include "platform/typelib/Description.h"
#include "platform/typelib/Loading.h"
#include "platform/typelib/RegistryKey.h"

namespace wnplatform::typelib {
namespace {

constexpr WORD kAnyVersion = 0xFFFF;

std::string LibraryKey(REFGUID guid) { return "TypeLib\\{" + GuidText(guid) + "}"; }

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
        if (auto path = ReadClassesText(version + PathKey(wanted))) return path;
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
    for (const std::string& name : ClassesSubkeys(library)) {
        const auto version = ParseVersion(name);
        if (!version || (major != kAnyVersion && (version->first != major || version->second < minor))) continue;
        if (!best || *version > *best) best = version;
    }
    if (!best) return std::nullopt;
    return LocalisedPath(library + "\\" + VersionKey(best->first, best->second), locale);
}

struct Released {
    ITypeLib* library;
    TLIBATTR* attributes = nullptr;
    BSTR name = nullptr;
    BSTR help = nullptr;
    ~Released() {
        if (attributes) library->ReleaseTLibAttr(attributes);
        SysFreeString(name);
        SysFreeString(help);
    }
};

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
    return Guarded(E_OUTOFMEMORY, [&] {
        Released held{library};
        HRESULT hr = library->GetLibAttr(&held.attributes);
        if (SUCCEEDED(hr)) hr = library->GetDocumentation(-1, &held.name, &held.help, nullptr, nullptr);
        if (FAILED(hr)) return hr;
        const TLIBATTR& attributes = *held.attributes;
        const std::string version =
            LibraryKey(attributes.guid) + "\\" + VersionKey(attributes.wMajorVerNum, attributes.wMinorVerNum);
        // That it came from a file is nothing that the library says of itself.
        const unsigned flags = attributes.wLibFlags & ~unsigned{LIBFLAG_FHASDISKIMAGE};
        const bool written = WriteClassesText(version, NarrowText(held.help ? held.help : held.name)) &&
                             WriteClassesText(version + "\\FLAGS", std::to_string(flags)) &&
                             WriteClassesText(version + PathKey(attributes.lcid), NarrowText(fullPath)) &&
                             WriteClassesText(version + "\\HELPDIR", NarrowText(helpDirectory));
        return written ? S_OK : TYPE_E_REGISTRYACCESS;
    });
}

HRESULT UnRegisterTypeLib(REFGUID guid, WORD major, WORD minor, LCID locale, SYSKIND system) {
    if (system != SYS_WIN32) return E_INVALIDARG;
    return Guarded(E_OUTOFMEMORY, [&] {
        const std::string library = LibraryKey(guid);
        const std::string version = library + "\\" + VersionKey(major, minor);
        if (!ReadClassesText(version + PathKey(locale))) return TYPE_E_REGISTRYACCESS;
        if (!RemoveClassesTree(version)) return TYPE_E_REGISTRYACCESS;
        // Other versions keep the library's key.
        if (ClassesSubkeys(library).empty()) RemoveClassesTree(library);
        return S_OK;
    });
}
