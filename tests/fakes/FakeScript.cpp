#include "tests/fakes/FakeScript.h"

#include <algorithm>
#include <new>
#include <utility>

#include "common/CPException.h"

namespace wncom::test {
namespace {

std::string Shown(const std::string& operation, const std::vector<std::string>& texts) {
    std::string shown = operation + "(";
    for (std::size_t i = 0; i < texts.size(); ++i) shown += (i ? ", " : "") + texts[i];
    return shown + ")";
}

template <class Map>
std::optional<typename Map::mapped_type> Find(const Map& map, const std::string& name) {
    const auto found = map.find(name);
    if (found == map.end()) return std::nullopt;
    return found->second;
}

std::string DllQuery(std::size_t index, const char* leaf) {
    return "./transportdlls/jobcontrol/dll[" + std::to_string(index) + "]/" + leaf;
}

}  // namespace

FakeScript& Script() {
    static FakeScript script;
    return script;
}

HRESULT RegisterFakeComponents(const std::string& folder) {
    const HMODULE module = LoadLibraryA((folder + "/FakeComponents.dll").c_str());
    const auto registerServer = reinterpret_cast<HRESULT (*)()>(
        reinterpret_cast<void (*)()>(module ? GetProcAddress(module, "DllRegisterServer") : nullptr));
    return registerServer ? registerServer() : HRESULT_FROM_WIN32(GetLastError());
}

void FakeScript::Reset() {
    const std::lock_guard lock(m_section);
    m_calls.clear();
    m_faultsByNumber.clear();
    m_faultsByName.clear();
    m_answers.clear();
    m_lists.clear();
    m_flags.clear();
    m_queries.clear();
    m_services.clear();
}

void FakeScript::ForgetCalls() {
    const std::lock_guard lock(m_section);
    m_calls.clear();
}

void FakeScript::FailAtCall(unsigned number, Misbehaviour misbehaviour) {
    const std::lock_guard lock(m_section);
    m_faultsByNumber[number] = misbehaviour;
}

void FakeScript::FailIn(const std::string& operation, Misbehaviour misbehaviour, unsigned occurrence) {
    const std::lock_guard lock(m_section);
    m_faultsByName.push_back({operation, occurrence, misbehaviour});
}

void FakeScript::Answer(const std::string& operation, std::string text) {
    const std::lock_guard lock(m_section);
    m_answers[operation] = std::move(text);
}

void FakeScript::AnswerList(const std::string& operation, std::vector<std::string> texts) {
    const std::lock_guard lock(m_section);
    m_lists[operation] = std::move(texts);
}

void FakeScript::AnswerFlag(const std::string& operation, bool flag) {
    const std::lock_guard lock(m_section);
    m_flags[operation] = flag;
}

void FakeScript::SetCatalogue(const std::string& networkMapping,
                              const std::vector<std::pair<std::string, std::string>>& typesAndNames) {
    const std::lock_guard lock(m_section);
    m_queries.clear();
    AnswerQuery("./networkmapping", networkMapping);
    AnswerQuery("./path", "unused");
    for (std::size_t i = 0; i < typesAndNames.size(); ++i) {
        AnswerQuery(DllQuery(i + 1, "type"), typesAndNames[i].first);
        AnswerQuery(DllQuery(i + 1, "name"), typesAndNames[i].second);
    }
}

void FakeScript::AnswerQuery(const std::string& query, std::string text) {
    const std::lock_guard lock(m_section);
    m_queries[query] = std::move(text);
}

void FakeScript::ForgetQuery(const std::string& query) {
    const std::lock_guard lock(m_section);
    m_queries.erase(query);
}

void FakeScript::SetServices(std::vector<FakeService> services) {
    const std::lock_guard lock(m_section);
    m_services = std::move(services);
}

unsigned FakeScript::CallCount() {
    const std::lock_guard lock(m_section);
    return static_cast<unsigned>(m_calls.size());
}

std::vector<std::string> FakeScript::Calls() { return CallsOf(""); }

std::vector<std::string> FakeScript::CallsOf(const std::string& operationOrModule) {
    const std::lock_guard lock(m_section);
    std::vector<std::string> shown;
    for (const Call& call : m_calls) {
        if (operationOrModule.empty() || call.operation == operationOrModule ||
            call.operation.rfind(operationOrModule + ".", 0) == 0) {
            shown.push_back(call.shown);
        }
    }
    return shown;
}

int FakeScript::LiveObjects() {
    const std::lock_guard lock(m_section);
    return m_liveObjects;
}

Misbehaviour FakeScript::Enter(const std::string& operation, const std::vector<std::string>& texts) {
    const std::lock_guard lock(m_section);
    m_calls.push_back({operation, Shown(operation, texts)});
    const auto occurrence = static_cast<unsigned>(
        std::count_if(m_calls.begin(), m_calls.end(), [&](const Call& call) { return call.operation == operation; }));
    Misbehaviour misbehaviour;
    if (const auto found = m_faultsByNumber.find(static_cast<unsigned>(m_calls.size()));
        found != m_faultsByNumber.end()) {
        misbehaviour = found->second;
    }
    for (const PlannedFault& planned : m_faultsByName) {
        if (planned.operation == operation && (planned.occurrence == 0 || planned.occurrence == occurrence)) {
            misbehaviour = planned.misbehaviour;
        }
    }
    switch (misbehaviour.fault) {
        case Fault::CommonException:
            throw CPException("scripted", E_ABORT);
        case Fault::OutOfMemory:
            throw std::bad_alloc();
        case Fault::Integer:
            throw 42;
        default:
            return misbehaviour;
    }
}

std::optional<std::string> FakeScript::AnswerOf(const std::string& operation) {
    const std::lock_guard lock(m_section);
    return Find(m_answers, operation);
}

std::optional<std::vector<std::string>> FakeScript::ListOf(const std::string& operation) {
    const std::lock_guard lock(m_section);
    return Find(m_lists, operation);
}

bool FakeScript::FlagOf(const std::string& operation) {
    const std::lock_guard lock(m_section);
    return Find(m_flags, operation).value_or(false);
}

std::optional<std::string> FakeScript::QueryAnswer(const std::string& query) {
    const std::lock_guard lock(m_section);
    return Find(m_queries, query);
}

std::vector<FakeService> FakeScript::Services() {
    const std::lock_guard lock(m_section);
    return m_services;
}

void FakeScript::ObjectMade() {
    const std::lock_guard lock(m_section);
    ++m_liveObjects;
}

void FakeScript::ObjectGone() {
    const std::lock_guard lock(m_section);
    --m_liveObjects;
}

}  // namespace wncom::test
