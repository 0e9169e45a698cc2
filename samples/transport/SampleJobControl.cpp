#include "samples/transport/SampleJobControl.h"

#include <stdexcept>

#include "samples/transport/Operation.h"

namespace sample {

using wncom::CPComPtr;
using wncom::CString;

namespace {

CString Value(const std::string& text) { return CString(std::string_view(text)); }

}  // namespace

// The logger is this library's own copy and needs a start of its own. The registry value "wnSampleTransport"
// configures it, else the default value that also configures the agent.
SampleJobControl::SampleJobControl() { m_logging.Start("wnSampleTransport"); }

// An address that cannot be used leaves an object that answers nothing: the bridge keeps it and goes on calling.
void SampleJobControl::Initialize(CString serviceUri, CPComPtr<IUnknown>) {
    Answered("Initialize", nullptr, [&] {
        m_device = &DeviceAt(serviceUri);
        wncom::Log(3, "SampleJobControl::connected to %s\n", serviceUri);
    });
}

CString SampleJobControl::GetWorkflowCapabilities(CString, int) {
    return Answered("GetWorkflowCapabilities", nullptr, [&] { return Value(Connected().Capabilities()); });
}

CString SampleJobControl::SubmitJob(CString intentTicket, int) {
    return Answered("SubmitJob", nullptr, [&] { return Value(Connected().SubmitJob(intentTicket)); });
}

// Places in the table of functions that nobody calls.
void SampleJobControl::Reserved2() {}
void SampleJobControl::Reserved3() {}
void SampleJobControl::Reserved4() {}

// The device knows the thread's session without being told its id.
void SampleJobControl::SetSessionID(CString) {}

CString SampleJobControl::StartSession() {
    return Answered("StartSession", nullptr, [&] { return Value(Connected().StartSession()); });
}

void SampleJobControl::EndSession() {
    Answered("EndSession", nullptr, [&] { Connected().EndSession(); });
}

CString SampleJobControl::GetData(CString xdmPath, CString, BSTR* exceptionSlot, int) {
    return Answered("GetData", exceptionSlot, [&] { return Value(Connected().Read(xdmPath)); });
}

// The text reaches the client only beside true, so it serves to report what could not be set when the rest was.
bool SampleJobControl::SetData(CString xdmSetDocument, bool failureDetails, WCHAR** textSlot, int) {
    return Answered("SetData", nullptr, [&] {
        const std::string failures = Connected().Write(xdmSetDocument, failureDetails);
        if (!failures.empty() && textSlot) *textSlot = MallocText(failures);
        return true;
    });
}

Device& SampleJobControl::Connected() const {
    if (!m_device) throw std::runtime_error("There is no connection to a device");
    return *m_device;
}

}  // namespace sample
