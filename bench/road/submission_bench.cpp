// A submission through agent, bridge and factory with a transport library that answers at once, beside a bare HTTP
// POST of the same ticket to wndevice on loopback.
#include <curl/curl.h>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>

#include "bench/Bench.h"
#include "bench/road/Road.h"
#include "tests/support/Com.h"
#include "tests/support/DeviceProcess.h"
#include "tests/support/TestHome.h"

namespace wncom::bench {
namespace {

using namespace wncom::test;

constexpr std::size_t kPairs = 41;
constexpr std::size_t kSubmissions = 50;  // in a slice
constexpr double kAim = 4;                // a quarter of the POST

void Submit(const Road& road, const Bstr& ticket) {
    CPComPtr<IUnknown> answer;
    Require(road.agent().SendIntentTicket(ticket.get(), answer.put()) == S_OK, "a submission failed");
}

std::size_t Ignore(char*, std::size_t size, std::size_t count, void*) { return size * count; }
std::size_t Keep(char* bytes, std::size_t size, std::size_t count, void* text) {
    static_cast<std::string*>(text)->append(bytes, size * count);
    return size * count;
}

// Posts tickets over one kept connection, in one session.
class BarePost {
public:
    explicit BarePost(const std::string& address) : m_jobs(address + "/jobs"), m_curl(curl_easy_init()) {
        std::string session;
        curl_easy_setopt(m_curl.get(), CURLOPT_URL, (address + "/sessions").c_str());
        curl_easy_setopt(m_curl.get(), CURLOPT_POSTFIELDS, "");
        curl_easy_setopt(m_curl.get(), CURLOPT_WRITEFUNCTION, Keep);
        curl_easy_setopt(m_curl.get(), CURLOPT_WRITEDATA, &session);
        Perform();
        curl_easy_setopt(m_curl.get(), CURLOPT_URL, m_jobs.c_str());
        curl_easy_setopt(m_curl.get(), CURLOPT_WRITEFUNCTION, Ignore);
        m_session = "Session-Id: " + session;
    }

    void Post(const std::string& ticket) {
        char id[64];
        std::snprintf(id, sizeof(id), "Request-Id: %032zx", ++m_number);
        curl_slist* headers = curl_slist_append(nullptr, m_session.c_str());
        for (const char* header :
             {m_session.c_str(), static_cast<const char*>(id), "Content-Type: application/xml", "Expect:"}) {
            headers = curl_slist_append(headers, header);
        }
        curl_easy_setopt(m_curl.get(), CURLOPT_HTTPHEADER, headers);
        curl_easy_setopt(m_curl.get(), CURLOPT_POSTFIELDS, ticket.c_str());
        curl_easy_setopt(m_curl.get(), CURLOPT_POSTFIELDSIZE, static_cast<long>(ticket.size()));
        Perform();
        curl_slist_free_all(headers);
    }

private:
    struct Cleanup {
        void operator()(CURL* curl) const { curl_easy_cleanup(curl); }
    };

    void Perform() {
        Require(curl_easy_perform(m_curl.get()) == CURLE_OK, "a bare POST failed");
        long status = 0;
        curl_easy_getinfo(m_curl.get(), CURLINFO_RESPONSE_CODE, &status);
        Require(status == 201, "wndevice refused a bare POST");
    }

    std::string m_jobs;
    std::string m_session;
    std::size_t m_number = 0;
    std::unique_ptr<CURL, Cleanup> m_curl;
};

void Submission(benchmark::State& state, std::size_t bytes, const std::string& logging) {
    const std::string ticket = "<ticket>" + std::string(bytes - 17, 't') + "</ticket>";
    const Bstr wideTicket = Text(ticket);
    const DeviceProcess device({"--quiet"});
    BarePost post(device.Address());
    const Road road(logging);
    Report(state,
           ComparePairs(
               kPairs, kSubmissions,
               [&] {
                   for (std::size_t i = 0; i < kSubmissions; ++i) Submit(road, wideTicket);
               },
               [&] {
                   for (std::size_t i = 0; i < kSubmissions; ++i) post.Post(ticket);
               }),
           kAim);
}

}  // namespace
}  // namespace wncom::bench

int main(int argc, char** argv) {
    using namespace wncom::bench;
    const std::string file = "file," + wncom::test::HomePath() + "/bench.log,3";
    for (const auto& [name, bytes] : {std::pair{"1 KB", std::size_t{1} << 10}, {"64 KB", std::size_t{64} << 10}}) {
        for (const auto& [kind, logging] : {std::pair{"logging off", std::string("none")}, {"level 3", file}}) {
            Register(std::string("submission of ") + name + ", " + kind + " / bare POST",
                     [size = bytes, text = logging](benchmark::State& state) { Submission(state, size, text); });
        }
    }
    return Run(argc, argv);
}
