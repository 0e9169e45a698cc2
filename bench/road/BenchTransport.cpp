// A transport library that answers at once: what an operation costs without a service.
#include <string>

#include "wncom/RemoteArray.h"
#include "wncom/RmtJobControl.h"

namespace {

using wncom::CPComPtr;
using wncom::CString;

constexpr const char* kResponse =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?><response><PostURI>http://127.0.0.1/data/1</PostURI>"
    "<JobUri>http://127.0.0.1/jobs/1</JobUri></response>";

// 1 MB, made once.
const CString& Document() {
    static const CString document("<xdm>" + std::string((1U << 20) - 11, 'd') + "</xdm>");
    return document;
}

class BenchJobControl final : public wncom::RmtJobControl {
public:
    CString GetWorkflowCapabilities(CString, int) override { return {}; }
    CString SubmitJob(CString, int) override { return kResponse; }
    void Reserved2() override {}
    void Reserved3() override {}
    void Reserved4() override {}
    void SetSessionID(CString) override {}
    CString StartSession() override { return "bench"; }
    void EndSession() override {}
    CString Subscribe(CString, CString, CString) override { return {}; }
    void Unsubscribe(CString) override {}
    wncom::RemoteArray* GetSupportedEvents() override { return nullptr; }
    wncom::RemoteArray* GetEventProperties(CString) override { return nullptr; }
    void Initialize(CString, CPComPtr<IUnknown>) override {}
    CString GetData(CString, CString, BSTR*, int) override { return Document(); }
    bool SetData(CString, bool, WCHAR**, int) override { return false; }
    CString GetEventCapabilities(BSTR*) override { return {}; }
    CString SubscribeForEvents(CString, BSTR*) override { return {}; }
    bool Resubscribe(CString, CString, BSTR*) override { return false; }
    bool UnsubscribeForEvents(CString, BSTR*) override { return false; }
};

}  // namespace

extern "C" wncom::RmtJobControl* maker() { return new BenchJobControl; }
extern "C" void demaker(wncom::RmtJobControl* object) { delete static_cast<BenchJobControl*>(object); }
