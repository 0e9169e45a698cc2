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
    const int liveObjects = m_liveObjects;
    *this = FakeScript();
    m_liveObjects = liveObjects;
}

void FakeScript::SetCatalogue(const std::string& networkMapping,
                              const std::vector<std::pair<std::string, std::string>>& typesAndNames) {
    m_queries.clear();
    AnswerQuery("./networkmapping", networkMapping);
    AnswerQuery("./path", "unused");
    for (std::size_t i = 0; i < typesAndNames.size(); ++i) {
        AnswerQuery(DllQuery(i + 1, "type"), typesAndNames[i].first);
        AnswerQuery(DllQuery(i + 1, "name"), typesAndNames[i].second);
    }
}

std::vector<std::string> FakeScript::CallsOf(const std::string& operationOrModule) const {
    std::vector<std::string> shown;
    for (const Call& call : m_calls) {
        if (operationOrModule.empty() || call.operation == operationOrModule ||
            call.operation.starts_with(operationOrModule + ".")) {
            shown.push_back(call.shown);
        }
    }
    return shown;
}

Misbehaviour FakeScript::Enter(const std::string& operation, const std::vector<std::string>& texts) {
    m_calls.push_back({operation, Shown(operation, texts)});
    const auto occurrence = static_cast<unsigned>(
        std::count_if(m_calls.begin(), m_calls.end(), [&](const Call& call) { return call.operation == operation; }));
    Misbehaviour misbehaviour = Find(m_faultsByNumber, CallCount()).value_or(Misbehaviour());
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

}  // namespace wncom::test
