// The service's open connections, which the HTTP library does not show.
#pragma once

namespace wndevice {

// Ends the connection to a client's port on loopback at once, without another byte.
void EndConnection(int clientPort);

// Ends all connections for reading, so that threads which wait for a further request notice; answers that are being
// written still reach their clients.
void EndWaiting();

}  // namespace wndevice
