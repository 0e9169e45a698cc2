#include "platform/typelib/Loading.h"

#include <sys/stat.h>

#include <charconv>
#include <new>
#include <string>

#include "oleauto.h"
#include "platform/core/Guarded.h"
#include "platform/files/Paths.h"
#include "platform/text/Texts.h"
#include "platform/typelib/Loaded.h"
#include "platform/typelib/TypeLib.h"

namespace wnplatform::typelib {
namespace {

constexpr unsigned kFirstResource = 1;

bool IsFile(const std::string& hostPath) {
    struct stat state {};
    return stat(hostPath.c_str(), &state) == 0 && S_ISREG(state.st_mode);
}

// Takes "\2" off the end of a path and gives the number; 0 for a path that has none.
unsigned TakeResourceNumber(std::string& path) {
    const auto separator = path.find_last_of("\\/");
    if (separator == std::string::npos || separator + 1 == path.size()) return 0;
    unsigned number = 0;
    const char* last = path.data() + path.size();
    const auto [end, error] = std::from_chars(path.data() + separator + 1, last, number);
    if (error != std::errc() || end != last) return 0;
    path.resize(separator);
    return number;
}

std::shared_ptr<const Library> Find(std::string path) {
    const std::string hostPath = HostPathFromUtf8(path);
    std::shared_ptr<const Library> library = LoadedLibrary(hostPath, kFirstResource);
    // A file may be named like a number.
    if (library || IsFile(hostPath)) return library;
    const unsigned number = TakeResourceNumber(path);
    return number == 0 ? nullptr : LoadedLibrary(HostPathFromUtf8(path), number);
}

}  // namespace

HRESULT LoadFrom(std::string_view path, ITypeLib** library) {
    std::shared_ptr<const Library> found = Find(std::string(path));
    if (!found) return TYPE_E_CANTLOADLIBRARY;
    *library = new TypeLib(std::move(found));
    return S_OK;
}

}  // namespace wnplatform::typelib

HRESULT LoadTypeLib(LPCOLESTR file, ITypeLib** library) {
    using namespace wnplatform;
    if (!library) return E_INVALIDARG;
    *library = nullptr;
    if (!file) return E_INVALIDARG;
    return Guarded(E_OUTOFMEMORY, [&] { return typelib::LoadFrom(Utf8FromWide(file), library); });
}
