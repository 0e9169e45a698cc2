#include "tools/wndevice/EventSender.h"

#include <curl/curl.h>

#include <array>
#include <exception>
#include <memory>
#include <utility>

#include "tools/wndevice/EventDocuments.h"

namespace wndevice {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t kMostQueued = 1000;
constexpr std::size_t kMostQueuedBytes = std::size_t{4} << 20;
constexpr long kTimeout = 2000;                  // milliseconds for one attempt, all in all; libcurl's type
constexpr std::array kPauses = {200ms, 1000ms};  // before the second and the third attempt

struct CurlDeleter {
    void operator()(CURL* handle) const noexcept { curl_easy_cleanup(handle); }
    void operator()(curl_slist* headers) const noexcept { curl_slist_free_all(headers); }
};

// What a consumer answers beyond its status does not matter.
std::size_t Forget(const char*, std::size_t one, std::size_t count, void*) { return one * count; }

// Any other value than 0 ends the transfer.
int StopWhenOver(void* sender, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
    return static_cast<const EventSender*>(sender)->IsOver() ? 1 : 0;
}

}  // namespace

EventSender::EventSender(std::string id, Subscription subscription)
    : m_id(std::move(id)),
      m_subscription(std::move(subscription)),
      m_duration(m_subscription.duration),
      m_deadline(Clock::now() + m_duration),
      m_thread([this] { Run(); }) {}

EventSender::~EventSender() {
    End();
    m_thread.join();
}

void EventSender::Offer(const Event& event) {
    if (!Wants(m_subscription, event)) return;
    const std::lock_guard guard(m_lock);
    if (OverLocked()) return;
    ++m_sequence;
    if (m_queue.size() == kMostQueued) return;
    std::string document = EventDocument(m_id, m_sequence, m_subscription.cookie, event);
    if (document.size() > kMostQueuedBytes - m_queuedBytes) return;
    m_queuedBytes += document.size();
    m_queue.push_back(std::move(document));
    m_change.notify_all();
}

bool EventSender::Renew(std::chrono::seconds duration) {
    const std::lock_guard guard(m_lock);
    if (OverLocked()) return false;
    m_duration = duration;
    m_deadline = Clock::now() + duration;
    m_change.notify_all();
    return true;
}

bool EventSender::End() {
    const std::lock_guard guard(m_lock);
    if (OverLocked()) return false;
    m_ended = true;
    m_change.notify_all();
    return true;
}

std::chrono::seconds EventSender::Duration() const {
    const std::lock_guard guard(m_lock);
    return m_duration;
}

bool EventSender::IsOver() const {
    const std::lock_guard guard(m_lock);
    return OverLocked();
}

void EventSender::Run() {
    try {
        std::string document;
        while (Next(document)) {
            bool delivered = Deliver(document);
            if (m_subscription.bestEffort) continue;
            for (std::size_t i = 0; !delivered && i < kPauses.size() && Pause(kPauses[i]); ++i) {
                delivered = Deliver(document);
            }
        }
    } catch (const std::exception&) {
        End();  // out of memory: the consumer hears no more, as if its subscription had been cancelled
    }
    m_finished = true;
}

bool EventSender::Next(std::string& document) {
    std::unique_lock guard(m_lock);
    while (!OverLocked() && m_queue.empty()) m_change.wait_until(guard, m_deadline);
    if (OverLocked()) return false;
    document = std::move(m_queue.front());
    m_queue.pop_front();
    m_queuedBytes -= document.size();
    return true;
}

bool EventSender::Deliver(const std::string& document) const {
    const std::unique_ptr<CURL, CurlDeleter> handle(curl_easy_init());
    const std::unique_ptr<curl_slist, CurlDeleter> headers(
        curl_slist_append(nullptr, "Content-Type: application/xml; charset=utf-8"));
    if (!handle || !headers) return false;
    CURL* const curl = handle.get();
    curl_easy_setopt(curl, CURLOPT_URL, m_subscription.consumer.c_str());
    curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "http");
    curl_easy_setopt(curl, CURLOPT_PROXY, "");
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl, CURLOPT_TIMEOUT_MS, kTimeout);
    curl_easy_setopt(curl, CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(curl, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(document.size()));
    curl_easy_setopt(curl, CURLOPT_POSTFIELDS, document.c_str());
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, &Forget);
    curl_easy_setopt(curl, CURLOPT_NOPROGRESS, 0L);
    curl_easy_setopt(curl, CURLOPT_XFERINFOFUNCTION, &StopWhenOver);
    curl_easy_setopt(curl, CURLOPT_XFERINFODATA, this);
    if (curl_easy_perform(curl) != CURLE_OK) return false;
    long status = 0;  // libcurl's type
    curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status);
    return status >= 200 && status <= 299;
}

bool EventSender::Pause(std::chrono::milliseconds time) {
    std::unique_lock guard(m_lock);
    const auto end = Clock::now() + time;
    while (!OverLocked() && Clock::now() < end) m_change.wait_until(guard, std::min(end, m_deadline));
    return !OverLocked();
}

}  // namespace wndevice
