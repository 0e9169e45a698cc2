// The in-process servers of COM classes that this process has loaded.
#pragma once

#include <memory>

#include "objbase.h"

namespace wnplatform {

// A server that stays loaded for as long as somebody holds it, whatever it says of itself.
struct ClassServer;
using HeldServer = std::shared_ptr<const ClassServer>;

// Loads the server that is registered for the class, unless it is loaded, and asks it for the class object. Class
// objects need not keep their server loaded: a call into one needs the server held.
HRESULT GetServerClassObject(REFCLSID clsid, REFIID iid, HeldServer& server, void** object);

// Unloads every server that agrees to it and that nobody holds.
void UnloadIdleServers() noexcept;

}  // namespace wnplatform
