#include "platform/typelib/Loading.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <memory>

#include "oleauto.h"
#include "platform/core/Guarded.h"
#include "platform/files/Descriptor.h"
#include "platform/files/Paths.h"
#include "platform/text/Texts.h"
#include "platform/typelib/Resource.h"
#include "platform/typelib/TypeLib.h"

namespace wnplatform::typelib {

HRESULT LoadFrom(std::string_view path, ITypeLib** library) {
    // A pipe that has no writer must not hold up the caller.
    const Descriptor file(open(HostPathFromUtf8(path).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat state {};
    if (!file || fstat(file.Get(), &state) != 0 || !S_ISREG(state.st_mode)) return TYPE_E_CANTLOADLIBRARY;
    const auto blob = ReadResource(file.Get(), static_cast<std::uint64_t>(state.st_size));
    auto tables = blob ? Tables::FromBlob(*blob) : std::nullopt;
    if (!tables) return TYPE_E_CANTLOADLIBRARY;
    const std::size_t last = tables->libraries.size() - 1;
    *library = new TypeLib(std::make_shared<const Tables>(std::move(*tables)), last);
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
