// The agent of one device service, for the commands that talk to one.
#pragma once

#include <windows.h>

#include <string>

#include "tools/wn/ComSession.h"
#include "tools/wn/Command.h"
#include "tools/wn/Texts.h"
#include "wncom/Bstr.h"
#include "wncom/CPComPtr.h"
#include "wncom/wnCOM.h"

namespace wn {

// Which service a command talks to.
struct Service {
    std::string address;
    std::string id;  // empty: the address
};

// --to, which is required, and --id.
void AddServiceOptions(CLI::App* command, Service& service);

// A new object of the class that the ProgID names. Throws CommandError, which names the module that has to be
// registered.
void* CreateComponent(const OLECHAR* progId, const IID& iid, const char* module);
template <class T>
wncom::CPComPtr<T> Create(const OLECHAR* progId, const char* module) {
    wncom::CPComPtr<T> object;
    object.attach(static_cast<T*>(CreateComponent(progId, T::kIid, module)));
    return object;
}

// For what cannot fail but in a broken installation: throws CommandError with the text and the status.
void Check(HRESULT status, const char* what);

// Starts COM on the calling thread and makes the agent; that thread alone may use it. Failures throw CommandError.
class Agent {
public:
    explicit Agent(const Service& service);

    // One of the agent's interfaces.
    template <class T>
    wncom::CPComPtr<T> As() const {
        wncom::CPComPtr<T> other;
        wn::Check(m_agent.QueryInterface(other), "The agent lacks an interface");
        return other;
    }
    wncom::IWendrel* operator->() const { return m_agent.get(); }

    // What the agent knows the service by.
    const wncom::Bstr& id() const { return m_id; }

    // Throws CommandError after a failed call: what failed, the status, and the service's own words or, when nobody
    // said why, where to look.
    void Check(HRESULT status, const std::string& what, const wncom::Bstr& said = wncom::Bstr()) const;
    // For an empty list, which is also what the agent answers when the service could not be asked.
    [[noreturn]] void FailEmpty(const std::string& what) const;

private:
    ComSession m_com;
    std::string m_address;
    wncom::Bstr m_id;
    wncom::CPComPtr<wncom::IWendrel> m_agent;
};

}  // namespace wn
