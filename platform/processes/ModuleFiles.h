// Finding the file of a module.
#pragma once

#include <string>
#include <string_view>

#include "windef.h"

namespace wnplatform {

// The name by which a module is looked for: ".dll" is put to one without an extension, and a full stop at the end,
// which says that there is none, is taken off.
std::string ModuleFileName(std::string_view path);

// Whether a name has no folder and so is searched for.
bool IsBareName(std::string_view name) noexcept;

// The host's path, without links, of the file that a name or a path of the layer stands for. A bare name is searched
// for in the program's folder, the Windows directory, the current directory and those of PATH. Empty when there is no
// such file.
std::string FindModuleFile(const std::string& name);

// Whether an existing file is a whole module for this system: ERROR_SUCCESS, ERROR_BAD_EXE_FORMAT, or why it could
// not be read.
DWORD CheckModuleFile(const std::string& file);

// What the dynamic linker's text says was wrong with a module that is whole: another one that it needs was not found,
// or lacks a function, or the like.
DWORD ErrorFromLinker(std::string_view text) noexcept;

}  // namespace wnplatform
