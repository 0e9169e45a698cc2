#include "tools/wndevice/EventKinds.h"

#include <algorithm>

namespace wndevice {

const std::vector<EventKind>& EventKinds() {
    static const std::vector<EventKind> kinds = {
        {"jobAccepted", {"jobId", "jobUri", "jobName"}},
        {"jobDataReceived", {"jobId", "jobUri", "dataBytes"}},
        {"deviceDataChanged", {"path", "value"}},
    };
    return kinds;
}

const EventKind* FindEventKind(const std::string& name) {
    const auto found =
        std::find_if(EventKinds().begin(), EventKinds().end(), [&](const EventKind& k) { return k.name == name; });
    return found == EventKinds().end() ? nullptr : &*found;
}

}  // namespace wndevice
