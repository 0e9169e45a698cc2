// The type libraries that this process has read.
#pragma once

#include <memory>
#include <string>

#include "platform/typelib/Description.h"

namespace wnplatform::typelib {

// The library of a file of the host, read again only when the file has changed. Null when the file holds none. Any
// thread may call.
std::shared_ptr<const Library> LoadedLibrary(const std::string& hostPath, unsigned resource);

// Standard(), to be held like the others.
std::shared_ptr<const Library> StandardLibrary();

}  // namespace wnplatform::typelib
