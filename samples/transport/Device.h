// A device inside the client's process: what a wire would lead to.
#pragma once

#include <windows.h>

#include <map>
#include <mutex>
#include <string>
#include <string_view>

#include "samples/transport/DataTable.h"
#include "samples/transport/Subscriptions.h"

namespace sample {

// Any thread may call: a device outlives the objects that lead to it, and those of several agents lead to the same
// one. Texts are UTF-8 unless said otherwise; every refusal is a std::runtime_error whose text tells why.
class Device {
public:
    explicit Device(std::string address);

    // An agent starts and ends a session through objects of its own, but always on its thread: so a session belongs
    // to the thread. A new one replaces the old one, for agents seldom end theirs.
    std::string StartSession();
    void EndSession();

    // These need a session. Documents come out in ASCII.
    std::string Capabilities() const;
    std::string SubmitJob(std::string_view intentTicket);
    std::string Read(std::string_view path) const;
    // Gives a document of the failures, empty when there are none; with partly, what can be set is set in spite of
    // them, without it they refuse the whole document.
    std::string Write(std::string_view setDocument, bool partly);
    std::string EventCapabilities() const;
    std::string SubscribeByTicket(std::string_view ticket);

    // These need none.
    std::string Subscribe(std::string_view info, std::string_view consumer);
    void Renew(const std::string& subscription, std::string_view duration);
    void Unsubscribe(const std::string& subscription);

private:
    void RequireSession() const;  // with the lock held

    const std::string m_address;
    mutable std::mutex m_lock;
    std::map<DWORD, std::string> m_sessions;  // by thread id
    int m_sessionsStarted = 0;
    int m_jobs = 0;
    DataTable m_data;
    Subscriptions m_subscriptions;
};

// The device at an address, made at its first mention; it lives until the library is unloaded. Throws
// std::invalid_argument for an address that does not begin with "sample://" or holds characters that may not stand in
// XML as they are.
Device& DeviceAt(std::string_view address);

}  // namespace sample
