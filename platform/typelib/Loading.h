// Type libraries by their files.
#pragma once

#include <string_view>

#include "oaidl.h"

namespace wnplatform::typelib {

// As LoadTypeLib, for a path in UTF-8 and a place that holds null. Throws when memory runs out.
HRESULT LoadFrom(std::string_view path, ITypeLib** library);

}  // namespace wnplatform::typelib
