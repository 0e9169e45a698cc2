// What the fake components and transport libraries are told to do, and what was asked of them.
//
// One script a process, shared by the test and all fake modules however often they are loaded, for one thread. Every
// outside call (a component's creation or operation, maker, demaker, a remote operation) enters it once, under a name
// such as "PortMap.GetMatchingDevices", "FakeTransport.maker" or "FakeTransport.SubmitJob", and is numbered from 1
// across all modules. IUnknown and IDispatch calls are not counted, but for the one query that the port-map walk
// makes
// ("DeviceServices.QueryInterface").
#pragma once

#include <windows.h>

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace wncom::test {

enum class Fault {
    None,
    Status,           // an HRESULT operation answers the status; a remote operation answers nothing
    Null,             // success, with nothing given: a null object, text or list
    CommonException,  // throws CPException("scripted", E_ABORT)
    OutOfMemory,      // throws std::bad_alloc
    Integer,          // throws an int
};

struct Misbehaviour {
    Fault fault = Fault::None;
    HRESULT status = S_OK;  // for Fault::Status
};

struct FakeService {
    std::string address;  // UTF-8
    std::string transport;
};

class FakeScript {
public:
    // Forgets calls, faults and answers; live objects stay counted.
    void Reset();
    // Forgets the calls only, so that numbers and occurrences start anew.
    void ForgetCalls() { m_calls.clear(); }

    // ---- told by tests ----
    // At the call with this number, counted from 1.
    void FailAtCall(unsigned number, Misbehaviour misbehaviour) { m_faultsByNumber[number] = misbehaviour; }
    // At each call of the operation, or only at its occurrence-th one, counted from 1.
    void FailIn(const std::string& operation, Misbehaviour misbehaviour, unsigned occurrence = 0) {
        m_faultsByName.push_back({operation, occurrence, misbehaviour});
    }
    // What an operation answers; operations without an answer of their own give an empty text. The same name with
    // ".slot" after it fills the operation's exception or text slot. COM texts are given in UTF-8.
    void Answer(const std::string& operation, std::string text) { m_answers[operation] = std::move(text); }
    void AnswerList(const std::string& operation, std::vector<std::string> texts) {
        m_lists[operation] = std::move(texts);
    }
    void AnswerFlag(const std::string& operation, bool flag) { m_flags[operation] = flag; }
    // The catalogue as the XML accessor answers it: the text of each query; a query that is not here gives S_FALSE.
    void SetCatalogue(const std::string& networkMapping,
                      const std::vector<std::pair<std::string, std::string>>& typesAndNames);
    void AnswerQuery(const std::string& query, std::string text) { m_queries[query] = std::move(text); }
    void ForgetQuery(const std::string& query) { m_queries.erase(query); }
    // The services of the one device that the port map holds; none: no device matches.
    void SetServices(std::vector<FakeService> services) { m_services = std::move(services); }

    // ---- asked by tests ----
    unsigned CallCount() const { return static_cast<unsigned>(m_calls.size()); }
    // Each call as its name and its texts: "FakeTransport.SubmitJob(<ticket/>, 1)".
    std::vector<std::string> Calls() const { return CallsOf(""); }
    std::vector<std::string> CallsOf(const std::string& operationOrModule) const;
    // Objects of the fake modules that are alive.
    int LiveObjects() const { return m_liveObjects; }

    // ---- called by the fakes ----
    // Records the call and tells what to do; throws when an exception is scripted.
    Misbehaviour Enter(const std::string& operation, const std::vector<std::string>& texts = {});
    std::optional<std::string> AnswerOf(const std::string& operation) const { return Find(m_answers, operation); }
    std::optional<std::vector<std::string>> ListOf(const std::string& operation) const {
        return Find(m_lists, operation);
    }
    bool FlagOf(const std::string& operation) const { return Find(m_flags, operation).value_or(false); }
    std::optional<std::string> QueryAnswer(const std::string& query) const { return Find(m_queries, query); }
    const std::vector<FakeService>& Services() const { return m_services; }
    void ObjectMade() { ++m_liveObjects; }
    void ObjectGone() { --m_liveObjects; }

private:
    struct Call {
        std::string operation;
        std::string shown;
    };
    struct PlannedFault {
        std::string operation;
        unsigned occurrence;
        Misbehaviour misbehaviour;
    };

    template <class Map>
    static std::optional<typename Map::mapped_type> Find(const Map& map, const typename Map::key_type& name) {
        const auto found = map.find(name);
        if (found == map.end()) return std::nullopt;
        return found->second;
    }

    std::vector<Call> m_calls;
    std::map<unsigned, Misbehaviour> m_faultsByNumber;
    std::vector<PlannedFault> m_faultsByName;
    std::map<std::string, std::string> m_answers;
    std::map<std::string, std::vector<std::string>> m_lists;
    std::map<std::string, bool> m_flags;
    std::map<std::string, std::string> m_queries;
    std::vector<FakeService> m_services;
    int m_liveObjects = 0;
};

// The process's one script.
FakeScript& Script();

// Loads FakeComponents.dll from a folder (ProgramFolder() in a test) and registers it through its own entry point in
// the test's home. The module stays loaded.
HRESULT RegisterFakeComponents(const std::string& folder);

// For a fake's class: counts the object while it lives.
struct CountedFake {
    CountedFake() { Script().ObjectMade(); }
    CountedFake(const CountedFake&) = delete;
    CountedFake& operator=(const CountedFake&) = delete;
    ~CountedFake() { Script().ObjectGone(); }
};

}  // namespace wncom::test
