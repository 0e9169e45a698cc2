// The module's two exports. No exception crosses them.
#include <exception>
#include <new>

#include "libraries/http/Connections.h"
#include "libraries/http/HttpJobControl.h"
#include "libraries/http/SessionHandover.h"
#include "wncom/RmtJobControl.h"

extern "C" wncom::RmtJobControl* maker() {
    try {
        return new wncom::http::HttpJobControl;
    } catch (const std::exception&) {
        return nullptr;
    }
}

extern "C" void demaker(wncom::RmtJobControl* object) {
    if (object) {
        delete static_cast<wncom::http::HttpJobControl*>(object);
        return;
    }
    wncom::http::SharedHandover().Forget();
    wncom::http::SharedConnections().CloseWhenUnused();
}
