// ISessionControl: sessions, which the operations that need one start by themselves.
#include "samples/client/Client.h"

namespace sample {

void ShowSessions(const CPComPtr<wncom::IWendrel>& agent, std::ostream& out) {
    const auto sessions = Ask<wncom::ISessionControl>(agent);
    out << "StartSession: " << Hex(sessions->StartSession()) << "\n";
    // Clears the session context of the transport description, then starts as above.
    out << "RestartSession: " << Hex(sessions->RestartSession()) << "\n";
    // Good manners towards a device that counts its sessions; nobody else ends one.
    out << "EndSession: " << Hex(sessions->EndSession()) << "\n";
}

}  // namespace sample
