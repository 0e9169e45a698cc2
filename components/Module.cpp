// The classes of wnComponents and their type library.
#include <iterator>

#include "common/server/Object.h"
#include "common/server/Server.h"
#include "components/cache/CacheManager.h"
#include "components/descriptions/ScriptAdapter.h"
#include "components/descriptions/ServiceDesc.h"
#include "components/descriptions/TransportDesc.h"
#include "components/portmap/DeviceDirectory.h"
#include "components/portmap/PortMapContent.h"
#include "components/portmap/PortMapList.h"
#include "components/xml/XmlAccessor.h"

namespace wncom::server {
namespace {

using namespace wncom::components;

constexpr ServedClass kClasses[] = {
    {CLSID_XMLSimpleAccessor, "XMLSimpleAccessor Class", "QBNORVEL.XMLSimpleAccessor.1", "QBNORVEL.XMLSimpleAccessor",
     CreateObject<XmlAccessor>},
    {CLSID_XMLCacheMgr, "XMLCacheMgr Class", "QBNORVEL.XMLCacheMgr.1", "QBNORVEL.XMLCacheMgr",
     CreateObject<CacheManager>},
    {CLSID_PortMap, "PortMap Class", "QBNORVEL.PortMap.1", "QBNORVEL.PortMap", CreateObject<DeviceDirectory>},
    {CLSID_DeviceContent, "DeviceContent Class", "QBNORVEL.DeviceContent.1", "QBNORVEL.DeviceContent",
     CreateObject<PortMapContent>},
    {CLSID_ServiceContent, "ServiceContent Class", "QBNORVEL.ServiceContent.1", "QBNORVEL.ServiceContent",
     CreateObject<PortMapContent>},
    {CLSID_ServiceList, "ServiceList Class", "QBNORVEL.ServiceList.1", "QBNORVEL.ServiceList",
     CreateObject<PortMapList>},
    {CLSID_ServiceDesc, "ServiceDesc Class", "QBNORVEL.ServiceDesc.1", "QBNORVEL.ServiceDesc",
     CreateObject<ServiceDesc>},
    {CLSID_TransportDesc, "TransportDesc Class", "QBNORVEL.TransportDesc.1", "QBNORVEL.TransportDesc",
     CreateObject<TransportDesc>},
    {CLSID_ScriptAccess, "ScriptAccess Class", "QBNORVEL.ScriptAccess.1", "QBNORVEL.ScriptAccess",
     CreateObject<ScriptAdapter>},
};

}  // namespace

const ServerDescription kServer = {
    kClasses, {0xabc6ba56, 0xdb8e, 0x4024, {0xa2, 0x4f, 0x6d, 0xef, 0xbe, 0x58, 0x45, 0x23}}, 1, 0};

}  // namespace wncom::server
