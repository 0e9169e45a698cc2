// What the module wnCOM serves.
#include "agent/Wendrel.h"
#include "agent/WendrelFactory.h"
#include "common/server/Object.h"
#include "common/server/Server.h"

namespace wncom::server {
namespace {

constexpr ServedClass kClasses[] = {
    {CLSID_Wendrel, "Wendrel Class", "QBNORVEL.Wendrel.1", "QBNORVEL.Wendrel", CreateObject<CWendrel>},
    {CLSID_WendrelParent, "WendrelParent Class", "QBNORVEL.WendrelParent.1", "QBNORVEL.WendrelParent",
     CreateObject<CWendrelParent>},
};

}  // namespace

constinit const ServerDescription kServer{kClasses, LIBID_WNCOMLib, 1, 0};

}  // namespace wncom::server
