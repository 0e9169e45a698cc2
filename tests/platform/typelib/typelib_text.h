// A type library as text, one line a member, for comparing whole ones at a glance.
#pragma once

#include <windows.h>

#include <ole2.h>

#include <memory>
#include <string>

#include "tests/support/Com.h"

namespace wncom::test {

struct ReleaseObject {
    void operator()(IUnknown* object) const { object->Release(); }
};
template <class T>
using Held = std::unique_ptr<T, ReleaseObject>;

// Loads the type library of a module beside the test program, or of a file given by its whole path. Null on failure.
Held<ITypeLib> LoadLibraryOf(const std::string& file);

// The view of a type through its table of functions: that of the partner for a dual one.
Held<ITypeInfo> TableView(ITypeInfo& type);
// The type that another one refers to.
Held<ITypeInfo> Referenced(ITypeInfo& type, UINT implementedIndex);

// What the type and each member of its own say of themselves:
// "NAME KIND flags=0x.. : BASE "help"" and "SLOT ID NAME(in BSTR a, out BSTR* b) "help"" with what is unusual before
// the help; for a class "NAME KIND flags=0x.. "help"" and "FLAGS INTERFACE".
std::string TypeText(ITypeInfo& type);
// All types in their order; interfaces as their tables show them.
std::string LibraryText(ITypeLib& library);

}  // namespace wncom::test
