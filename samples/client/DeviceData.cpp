// IWNXDMAccess: the device's data.
#include "samples/client/Client.h"

namespace sample {

void ShowDeviceData(const CPComPtr<wncom::IWendrel>& agent, std::ostream& out) {
    const auto data = Ask<wncom::IWNXDMAccess>(agent);
    const Bstr message(
        OLESTR("<setData><set><path>/device/message</path><value>Gr\u00F6\u00DFe A3</value></set></setData>"));
    Bstr exception;
    Check(data->SetData(message.get(), 0, exception.put()), "SetData");

    // A character outside ASCII comes back as the library wrote it: here as a reference that any XML parser resolves.
    Bstr document;
    Check(data->GetData(Bstr(OLESTR("/device/message")).get(), nullptr, exception.put(), document.put()), "GetData");
    out << Shown(document) << "\n";

    // What went wrong comes beside E_FAIL, when the library told it.
    const HRESULT status = data->GetData(Bstr(OLESTR("/device/lid")).get(), nullptr, exception.put(), document.put());
    out << "GetData: " << Hex(status) << ", " << Shown(exception) << "\n";

    // From SetData a text comes beside S_OK only: here the values that could not be set when the others were.
    const Bstr both(
        OLESTR("<setData><set><path>/device/message</path><value>busy</value></set>"
               "<set><path>/device/lid</path><value>open</value></set></setData>"));
    Check(data->SetData(both.get(), 1, exception.put()), "SetData");
    out << Shown(ElementText(exception, OLESTR("path"))) << ": " << Shown(ElementText(exception, OLESTR("reason")))
        << "\n";
    // When it refuses the whole document, the reason is in COM's error object.
    out << "SetData: " << Hex(data->SetData(both.get(), 0, nullptr)) << ", " << Shown(Reason()) << "\n";
}

}  // namespace sample
