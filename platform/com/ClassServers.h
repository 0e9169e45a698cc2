// The in-process servers of COM classes that this process has loaded.
#pragma once

#include "objbase.h"

namespace wnplatform {

// Loads the server that is registered for the class, unless it is loaded, and asks it for the class object.
HRESULT GetServerClassObject(REFCLSID clsid, REFIID iid, void** object);

// Unloads every server that agrees to it.
void UnloadIdleServers() noexcept;

}  // namespace wnplatform
