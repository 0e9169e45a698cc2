// A transport library scripted by the test. The build makes several of it: FAKE_NAME is the module's name,
// FAKE_NO_MAKER and FAKE_NO_DEMAKER leave an export out.
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "tests/fakes/FakeScript.h"
#include "wncom/Bstr.h"
#include "wncom/RemoteArray.h"
#include "wncom/RmtJobControl.h"

namespace wncom::test {
namespace {

std::string Named(const char* operation) { return std::string(FAKE_NAME ".") + operation; }

std::basic_string<WCHAR> Widened(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

// A text scripted for an operation's exception slot.
void FillSlot(const char* operation, BSTR* slot) {
    const std::optional<std::string> text = Script().AnswerOf(Named(operation) + ".slot");
    if (text && slot) *slot = SysAllocString(Widened(*text).c_str());
}

bool Enter(const char* operation, const std::vector<std::string>& texts = {}) {
    return Script().Enter(Named(operation), texts).fault == Fault::None;
}

CString Text(const char* operation, const std::vector<std::string>& texts) {
    if (!Enter(operation, texts)) return {};
    return CString(std::string_view(Script().AnswerOf(Named(operation)).value_or("")));
}

bool Flag(const char* operation, const std::vector<std::string>& texts) {
    return Enter(operation, texts) && Script().FlagOf(Named(operation));
}

RemoteArray* List(const char* operation, const std::vector<std::string>& texts) {
    if (!Enter(operation, texts)) return nullptr;
    const std::vector<std::string> names = Script().ListOf(Named(operation)).value_or(std::vector<std::string>());
    std::unique_ptr<CString[]> elements(new CString[names.size()]);
    for (std::size_t i = 0; i < names.size(); ++i) elements[i] = CString(std::string_view(names[i]));
    auto* list = new RemoteArray;
    list->Init(elements.release(), static_cast<LONG>(names.size()));
    return list;
}

class FakeJobControl final : public RmtJobControl, private CountedFake {
public:
    virtual ~FakeJobControl() = default;

    CString GetWorkflowCapabilities(CString request, int flag) override {
        return Text("GetWorkflowCapabilities", {request.c_str(), std::to_string(flag)});
    }
    CString SubmitJob(CString ticket, int flag) override {
        return Text("SubmitJob", {ticket.c_str(), std::to_string(flag)});
    }
    void Reserved2() override { Enter("Reserved2"); }
    void Reserved3() override { Enter("Reserved3"); }
    void Reserved4() override { Enter("Reserved4"); }
    void SetSessionID(CString sessionId) override { Enter("SetSessionID", {sessionId.c_str()}); }
    CString StartSession() override { return Text("StartSession", {}); }
    void EndSession() override { Enter("EndSession"); }
    CString Subscribe(CString info, CString filter, CString consumer) override {
        return Text("Subscribe", {info.c_str(), filter.c_str(), consumer.c_str()});
    }
    void Unsubscribe(CString id) override { Enter("Unsubscribe", {id.c_str()}); }
    RemoteArray* GetSupportedEvents() override { return List("GetSupportedEvents", {}); }
    RemoteArray* GetEventProperties(CString name) override { return List("GetEventProperties", {name.c_str()}); }
    void Initialize(CString serviceUri, CPComPtr<IUnknown> none) override {
        Enter("Initialize", {serviceUri.c_str(), none ? "an interface" : "none"});
    }
    CString GetData(CString path, CString prefixes, BSTR* exceptionSlot, int flag) override {
        FillSlot("GetData", exceptionSlot);
        return Text("GetData", {path.c_str(), prefixes.c_str(), std::to_string(flag)});
    }
    bool SetData(CString document, bool failureDetails, WCHAR** textSlot, int flag) override {
        const std::optional<std::string> text = Script().AnswerOf(Named("SetData.slot"));
        if (text && textSlot) *textSlot = _wcsdup(Widened(*text).c_str());
        return Flag("SetData", {document.c_str(), failureDetails ? "true" : "false", std::to_string(flag)});
    }
    CString GetEventCapabilities(BSTR* exceptionSlot) override {
        FillSlot("GetEventCapabilities", exceptionSlot);
        return Text("GetEventCapabilities", {});
    }
    CString SubscribeForEvents(CString ticket, BSTR* exceptionSlot) override {
        FillSlot("SubscribeForEvents", exceptionSlot);
        return Text("SubscribeForEvents", {ticket.c_str()});
    }
    bool Resubscribe(CString id, CString duration, BSTR* exceptionSlot) override {
        FillSlot("Resubscribe", exceptionSlot);
        return Flag("Resubscribe", {id.c_str(), duration.c_str()});
    }
    bool UnsubscribeForEvents(CString id, BSTR* exceptionSlot) override {
        FillSlot("UnsubscribeForEvents", exceptionSlot);
        return Flag("UnsubscribeForEvents", {id.c_str()});
    }
};

}  // namespace
}  // namespace wncom::test

#ifndef FAKE_NO_MAKER
extern "C" wncom::RmtJobControl* maker() {
    if (!wncom::test::Enter("maker")) return nullptr;
    return new wncom::test::FakeJobControl;
}
#endif

#ifdef FAKE_NO_DEMAKER
// For the test that made an object which the factory cannot give back.
extern "C" void FakeTakeBack(wncom::RmtJobControl* object) {
    delete static_cast<wncom::test::FakeJobControl*>(object);
}
#else
extern "C" void demaker(wncom::RmtJobControl* object) {
    // The object goes even when an exception is scripted: a test that counts objects must not see it as lost.
    const std::unique_ptr<wncom::test::FakeJobControl> owner(static_cast<wncom::test::FakeJobControl*>(object));
    wncom::test::Enter("demaker", {object ? "object" : "null"});
}
#endif
