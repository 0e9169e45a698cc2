// The agent of one device service, for the commands that talk to one.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <string>

#include "tools/wn/core/ComSession.h"
#include "tools/wn/core/Waiting.h"
#include "wncom/Bstr.h"
#include "wncom/CPComPtr.h"
#include "wncom/wnCOM.h"

namespace CLI {
class App;
}  // namespace CLI

namespace wn {

// Which service a command talks to.
struct Service {
    std::string address;
    std::string id;  // empty: the address
    TimeLimit limit{};
};

// --to, which is required, --id and --timeout.
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

// For what fails only in a broken installation: throws CommandError with the text and the status.
void Check(HRESULT status, const char* what);

// Starts COM on the calling thread and makes the agent; that thread alone may use it. Failures throw CommandError.
class Agent {
public:
    Agent(const Service& service, bool json);

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

    // Runs one call that may go to the service, and throws CommandError when it fails: what failed, why as far as
    // anyone knows, and where to look. what comes before the address in the message.
    template <class Operation>
    void Call(const std::string& what, Operation operation) const {
        wncom::Bstr said;
        Call(what, said, operation);
    }
    // said is where the call puts what the service answers to a refusal.
    template <class Operation>
    void Call(const std::string& what, wncom::Bstr& said, Operation operation) const {
        HRESULT status = S_OK;
        {
            const Waiting waiting(what + " " + m_service.address, m_service.address, m_service.limit, m_json);
            SetErrorInfo(0, nullptr);
            status = operation();
        }
        if (FAILED(status)) Fail(status, what, said);
    }
    // For an empty list, which is also what the agent answers when the service could not be asked.
    [[noreturn]] void FailEmpty(const std::string& what) const;

private:
    [[noreturn]] void Fail(HRESULT status, const std::string& what, const wncom::Bstr& said) const;

    ComSession m_com;
    Service m_service;
    bool m_json;
    wncom::Bstr m_id;
    wncom::CPComPtr<wncom::IWendrel> m_agent;
    std::string m_refusal;  // why the transport library refused the address; empty: it did not
};

}  // namespace wn
