// The classes of wnComponents and their type library.
#include <iterator>

#include "common/server/Object.h"
#include "common/server/Server.h"
#include "components/PortMap.h"
#include "components/PortMapContent.h"
#include "components/PortMapList.h"
#include "components/ScriptAccess.h"
#include "components/ServiceDesc.h"
#include "components/TransportDesc.h"
#include "components/XMLCacheMgr.h"
#include "components/XMLSimpleAccessor.h"

namespace wncom::server {
namespace {

using namespace wncom::components;

constexpr ServedClass kClasses[] = {
    {CLSID_XMLSimpleAccessor, "XMLSimpleAccessor Class", "QBNORVEL.XMLSimpleAccessor.1", "QBNORVEL.XMLSimpleAccessor",
     CreateObject<XMLSimpleAccessor>},
    {CLSID_XMLCacheMgr, "XMLCacheMgr Class", "QBNORVEL.XMLCacheMgr.1", "QBNORVEL.XMLCacheMgr",
     CreateObject<XMLCacheMgr>},
    {CLSID_PortMap, "PortMap Class", "QBNORVEL.PortMap.1", "QBNORVEL.PortMap", CreateObject<PortMap>},
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
     CreateObject<ScriptAccess>},
};

}  // namespace

const ServerDescription kServer = {
    kClasses, {0xabc6ba56, 0xdb8e, 0x4024, {0xa2, 0x4f, 0x6d, 0xef, 0xbe, 0x58, 0x45, 0x23}}, 1, 0};

}  // namespace wncom::server
