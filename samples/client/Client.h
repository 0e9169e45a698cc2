// What the examples have in common: objects by ProgID, statuses, and texts for the terminal.
#pragma once

#include <windows.h>

#include <ole2.h>

#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>

#include "wncom/Bstr.h"
#include "wncom/CPComPtr.h"
#include "wncom/wnCOM.h"

namespace sample {

using wncom::Bstr;
using wncom::CPComPtr;

// "0x80004005", as everybody writes statuses.
std::string Hex(HRESULT status);

// For the terminal: UTF-8, or "(null)".
std::string Shown(const Bstr& text);

// Why the last operation of this thread failed, as the transport library told COM; null when it told nothing. Reading
// takes it away.
Bstr Reason();

// Throws std::runtime_error with the operation's name, the status and the reason when that is a failure.
void Check(HRESULT status, const char* operation);

// A new object of the class that the ProgID names.
template <class Interface>
CPComPtr<Interface> Create(const OLECHAR* progId) {
    CLSID clsid;
    CPComPtr<Interface> object;
    Check(CLSIDFromProgID(progId, &clsid), "CLSIDFromProgID");
    Check(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, Interface::kIid, object.put_void()),
          "CoCreateInstance");
    return object;
}

// Another interface of the same object.
template <class Interface, class Held>
CPComPtr<Interface> Ask(const CPComPtr<Held>& object) {
    CPComPtr<Interface> asked;
    Check(object.QueryInterface(asked), "QueryInterface");
    return asked;
}

// What stands between <name> and </name> in an answer; empty when there is no such element.
Bstr ElementText(const Bstr& document, std::basic_string_view<OLECHAR> name);

// The examples, one an interface. Each writes what it learns, one line a thing, and throws std::runtime_error when an
// operation fails that should not.
CPComPtr<wncom::IWendrel> NewAgent(const OLECHAR* identifier, const OLECHAR* address);
CPComPtr<wncom::IWendrel> NewAgentByHand(const OLECHAR* identifier, const OLECHAR* address);
void ShowSubmission(const CPComPtr<wncom::IWendrel>& agent, std::ostream& out);
void ShowJobs(const CPComPtr<wncom::IWendrel>& agent, std::ostream& out);
void ShowSessions(const CPComPtr<wncom::IWendrel>& agent, std::ostream& out);
void ShowDeviceData(const CPComPtr<wncom::IWendrel>& agent, std::ostream& out);
void ShowEvents(const CPComPtr<wncom::IWendrel>& agent, std::ostream& out);
void ShowEventTickets(const CPComPtr<wncom::IWendrel>& agent, std::ostream& out);

}  // namespace sample
