// The operations on device data.
#include "libraries/http/HttpJobControl.h"
#include "libraries/http/Operation.h"
#include "libraries/http/WireText.h"

namespace wncom::http {

CString HttpJobControl::GetData(CString xdmPath, CString xdmPrefixes, BSTR* exceptionSlot, int) {
    return Answered("GetData", exceptionSlot, [&] {
        const std::string request = "<dataRequest>" + XmlElement("path", ToWire(xdmPath)) +
                                    XmlElement("prefixes", ToWire(xdmPrefixes)) + "</dataRequest>";
        Call call = DocumentCall("/device-data/read", request);
        call.answerType = "application/xml";
        return CString(std::string_view(XmlFromWire(Client().Send(call))));
    });
}

bool HttpJobControl::SetData(CString xdmSetDocument, bool failureDetails, WCHAR** textSlot, int) {
    return Answered("SetData", MallocSlot{failureDetails ? textSlot : nullptr}, [&] {
        Client().Send(
            DocumentCall("/device-data/write", ToWire(xdmSetDocument), failureDetails ? "Failure-Details: yes" : ""));
        return true;
    });
}

}  // namespace wncom::http
