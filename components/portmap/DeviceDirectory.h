// The port map.
#pragma once

#include "components/DualObject.h"
#include "wncom/PortMap.h"

namespace wncom::components {

// Keeps nothing: each call answers from the file as it is then.
class DeviceDirectory : public DualObject<IPortMap> {
public:
    HRESULT STDMETHODCALLTYPE GetDevices(IPortMapList** devices) override;
    HRESULT STDMETHODCALLTYPE GetMatchingDevices(IPortMapContent* device, IPortMapList** devices) override;
};

}  // namespace wncom::components
