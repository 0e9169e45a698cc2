// What makes a dynamic library a transport library: two exports with the platform's C calling convention, under
// exactly these names.
#include "samples/transport/SampleJobControl.h"

// Called at every connection. Null tells the agent that there is no object; no exception may leave.
extern "C" wncom::RmtJobControl* maker() {
    try {
        return new sample::SampleJobControl;
    } catch (...) {
        return nullptr;
    }
}

// Takes back what maker gave. Null comes whenever an agent is about to release the library: the place to end threads
// and close connections once the last agent has come here. This library has neither; its devices go when it is
// unloaded.
extern "C" void demaker(wncom::RmtJobControl* object) { delete static_cast<sample::SampleJobControl*>(object); }
