// One of many clients at once: soak_peer NUMBER FOLDER. It submits, reads and writes the cache and logs, round after
// round. After the first round it makes the file "started-NUMBER" in the folder, and it ends some rounds after the
// file "finish" has appeared there.
#include <windows.h>

#include <ole2.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <string>

#include "samples/client/Client.h"
#include "wncom/Descriptions.h"
#include "wncom/Logging.h"
#include "wncom/XMLCacheMgr.h"

namespace {

using sample::Check;
using wncom::Bstr;
using wncom::CPComPtr;

constexpr int kRoundsAfterFinish = 5;
constexpr int kRoundsOfAnAgent = 10;
constexpr int kKeys = 5;  // that all clients share
constexpr HRESULT kBusy = static_cast<HRESULT>(0x80070021);

Bstr Text(const std::string& ascii) {
    const std::basic_string<OLECHAR> wide(ascii.begin(), ascii.end());
    return Bstr(std::basic_string_view<OLECHAR>(wide));
}

void Require(bool holds, const std::string& what) {
    if (!holds) throw std::runtime_error(what);
}

class Client {
public:
    explicit Client(int number) : m_number(number), m_address("sample://peer-" + std::to_string(number)) {
        m_log.Start("SoakPeer");
    }

    void Round() {
        if (m_round % kRoundsOfAnAgent == 0) {
            m_agent.Release();
            m_jobs = 0;  // the library is unloaded now, and its device with it
            m_agent = sample::NewAgent(OLESTR("shared-device"), Text(m_address).get());
        }
        CPComPtr<IUnknown> answer;
        Check(m_agent->SendIntentTicket(Text("<t/>").get(), answer.put()), "SendIntentTicket");
        Bstr job;
        Check(sample::Ask<wncom::ITransportDesc>(answer)->GetJobURI(job.put()), "GetJobURI");
        const std::string wanted = m_address + "/jobs/" + std::to_string(++m_jobs);
        Require(sample::Shown(job) == wanted, sample::Shown(job) + " instead of " + wanted);
        UseCache();
        wncom::Log(3, "peer %d round %d\n", m_number, m_round++);
    }

private:
    // Only a cache that is busy for longer than it waits may refuse. A ticket of one letter, of many lengths, shows
    // by itself whether it is whole.
    void UseCache() {
        const auto cache = sample::Create<wncom::IXMLCacheMgr>(wncom::kProgIdXMLCacheMgr);
        const std::string letters(1 + static_cast<std::size_t>(m_round) * 7919 % 20000,
                                  static_cast<char>('a' + m_number % 26));
        HRESULT status = cache->PutXML(Key(m_round).get(), Text(letters + ".").get(), 3600, wncom::kCacheFlags);
        Require(status == S_OK || status == kBusy, "PutXML: " + sample::Hex(status));
        Bstr found;
        status = cache->FetchXML(Key(m_round + 1).get(), wncom::kCacheFlags, found.put());
        Require(status == S_OK || status == S_FALSE || status == kBusy, "FetchXML: " + sample::Hex(status));
        const std::string ticket = sample::Shown(found);
        Require(!found || ticket.find_first_not_of(ticket[0]) == ticket.size() - 1, "not a whole ticket");
    }
    static Bstr Key(int round) { return Text("key-" + std::to_string(round % kKeys)); }

    const int m_number;
    const std::string m_address;
    wncom::LogReference m_log;
    CPComPtr<wncom::IWendrel> m_agent;
    int m_round = 0;
    int m_jobs = 0;
};

void Run(int number, const std::string& folder) {
    // Ends by itself should nobody end it.
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(100);
    Client client(number);
    client.Round();
    std::ofstream(folder + "/started-" + std::to_string(number)).put('s');
    for (int left = kRoundsAfterFinish; left > 0;) {
        client.Round();
        if (std::ifstream(folder + "/finish")) --left;
        Require(std::chrono::steady_clock::now() < end, "nobody ended this client");
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3 || FAILED(CoInitialize(nullptr))) return 2;
    int status = 0;
    try {
        Run(std::atoi(argv[1]), argv[2]);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "soak_peer %s: %s\n", argv[1], failure.what());
        status = 1;
    }
    CoUninitialize();
    return status;
}
