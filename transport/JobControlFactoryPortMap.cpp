// JobControlFactory asks the port map which transport entry belongs to an address.
#include <string_view>
#include <utility>

#include "common/CPException.h"
#include "common/CodePageText.h"
#include "transport/JobControlFactory.h"
#include "wncom/Bstr.h"
#include "wncom/PortMap.h"
#include "wncom/TraceScope.h"

namespace wncom {
namespace {

// A component that claims success but gave no object has failed. S_FALSE means "none".
template <class T>
HRESULT Found(HRESULT status, const CPComPtr<T>& object) {
    return status == S_OK && !object ? E_POINTER : status;
}

// The text up to its terminator in the narrow code page; null gives an empty one.
CString NarrowForm(BSTR text) { return text ? CString(std::string_view(Narrow(CP_ACP, text))) : CString(); }

// What a search holds; all of it is released when the search ends.
struct Search {
    BSTR address;  // the caller's
    CPComPtr<IPortMap> portMap;
    CPComPtr<IPortMapContent> deviceSearch;
    CPComPtr<IPortMapList> serviceListSearch;
    CPComPtr<IPortMapContent> serviceSearch;
    CPComPtr<IPortMapList> deviceList;
    CPComPtr<IPortMapContent> deviceGet;
    CPComPtr<IUnknown> serviceListGet;
    CPComPtr<IPortMapList> services;
};

enum class Demand { NotNegative, ExactlyOk };

struct Step {
    HRESULT (*call)(Search& search);
    Demand demand;
    const char* failure;
};

// Builds the search template, finds the device and takes its list of services. Only the first device is looked at.
constexpr Step kSteps[] = {
    {[](Search& s) { return s.deviceSearch.CreateInstance(kProgIdDeviceContent); }, Demand::NotNegative,
     "JobControlFactory::getTransportTypeFromPortMapData, create deviceSearch failed"},
    {[](Search& s) { return s.serviceListSearch.CreateInstance(kProgIdServiceList); }, Demand::NotNegative,
     "JobControlFactory::getTransportTypeFromPortMapData, create ServiceListSearch failed"},
    {[](Search& s) { return s.serviceSearch.CreateInstance(kProgIdServiceContent); }, Demand::NotNegative,
     "JobControlFactory::getTransportTypeFromPortMapData, create serviceSearch failed"},
    {[](Search& s) { return s.serviceSearch->put_ServiceAddress(s.address); }, Demand::NotNegative,
     "JobControlFactory::getTransportTypeFromPortMapData, put_ServiceAddress failed"},
    {[](Search& s) { return s.serviceListSearch->Add(s.serviceSearch.get()); }, Demand::NotNegative,
     "JobControlFactory::getTransportTypeFromPortMapData, serviceListSearch->Add() failed"},
    {[](Search& s) { return s.deviceSearch->put_ServiceList(s.serviceListSearch.get()); }, Demand::NotNegative,
     "JobControlFactory::getTransportTypeFromPortMapData, put_ServiceList() failed"},
    {[](Search& s) {
         return Found(s.portMap->GetMatchingDevices(s.deviceSearch.get(), s.deviceList.put()), s.deviceList);
     },
     Demand::ExactlyOk, "JobControlFactory::getTransportTypeFromPortMapData, GetMatchingDevices() failed"},
    {[](Search& s) { return s.deviceGet.CreateInstance(kProgIdDeviceContent); }, Demand::ExactlyOk,
     "JobControlFactory::getTransportTypeFromPortMapData, deviceGet create instance failed"},
    {[](Search& s) { return Found(s.deviceList->First(s.deviceGet.put()), s.deviceGet); }, Demand::ExactlyOk,
     "JobControlFactory::getTransportTypeFromPortMapData, First() on deviceList failed"},
    {[](Search& s) { return Found(s.deviceGet->get_ServiceList(s.serviceListGet.put()), s.serviceListGet); },
     Demand::ExactlyOk, "JobControlFactory::getTransportTypeFromPortMapData, get_ServiceList() failed"},
    {[](Search& s) {
         const HRESULT status = s.serviceListGet.QueryInterface(s.services);
         return SUCCEEDED(status) && !s.services ? E_POINTER : status;
     },
     Demand::NotNegative, "JobControlFactory::getTransportTypeFromPortMapData, ServiceListGet->QI failed!"},
};

// Visits every service of a device and keeps the entry of the last one that matches.
class ServiceWalk {
public:
    ServiceWalk(IPortMapList& services, BSTR address)
        : m_services(services), m_address(address), m_searched(NarrowForm(address)) {}

    HRESULT Run(Bstr& transportInfo) {
        HRESULT status = First(transportInfo);
        const HRESULT ending = Rest(transportInfo);
        // A first service that failed decides the status, whatever matches later; only a broken list overrides it.
        return FAILED(ending) ? ending : status;
    }

private:
    HRESULT First(Bstr& transportInfo) {
        HRESULT status = Found(m_services.First(m_service.put()), m_service);
        if (status != S_OK) {
            Log(2, "JobControlFactory::getTransportTypeFromPortMapData, First failed");
            return status;
        }
        Bstr address;
        status = m_service->get_ServiceAddress(address.put());
        if (FAILED(status)) {
            Log(2, "JobControlFactory::getTransportTypeFromPortMapData, get_ServiceAddress in First block failed");
            return status;
        }
        if (Matches(address)) return Take(transportInfo);
        Log(2, "JobControlFactory::getTransportTypeFromPortMapData, didn't find match to searchstring in First");
        return status;
    }

    // The status of a list that broke off, else S_OK.
    HRESULT Rest(Bstr& transportInfo) {
        HRESULT last = S_OK;
        while (last == S_OK) {
            const HRESULT next = Found(m_services.Next(m_service.put()), m_service);
            if (next != S_OK) {
                Log(2, "JobControlFactory::getTransportTypeFromPortMapData, Next failed");
                return FAILED(next) ? next : S_OK;
            }
            Bstr address;
            last = m_service->get_ServiceAddress(address.put());
            if (FAILED(last)) {
                Log(2, "JobControlFactory::getTransportTypeFromPortMapData, get_ServiceAddress in Next block failed");
            } else if (Matches(address)) {
                last = Take(transportInfo);
            } else {
                Log(2,
                    "JobControlFactory::getTransportTypeFromPortMapData, didn't find match to searchstring in Next");
            }
        }
        return S_OK;
    }

    bool Matches(const Bstr& address) const {
        const CString narrow = NarrowForm(address.get());
        return std::string_view(narrow).find(m_searched) != std::string_view::npos;
    }

    HRESULT Take(Bstr& transportInfo) {
        Log(4, "JobControlFactory::getTransportTypeFromPortMapData, serviceAddress found: %S.", m_address);
        Bstr entry;
        const HRESULT status = m_service->get_TransportInfo(entry.put());
        if (SUCCEEDED(status)) transportInfo = std::move(entry);
        return status;
    }

    IPortMapList& m_services;
    BSTR m_address;
    CString m_searched;
    CPComPtr<IPortMapContent> m_service;
};

}  // namespace

CString JobControlFactory::checkPortMap(CString serviceAddress) {
    Log(3, "Entering JobControlFactory::checkPortMap().\n");
    const Bstr address = WidenToBstr(CP_ACP, serviceAddress);
    // Held to the end, it shows that there is a port map at all; the lookup makes its own.
    CPComPtr<IPortMap> portMap;
    if (FAILED(portMap.CreateInstance(kProgIdPortMap))) {
        Log(2, "JobControlFactory::checkPortMap, create PortMap instance failed.\n");
        Log(2, "JobControlFactory::checkPortMap(), failed");
        throw CPException("JobControlFactory::checkPortMap(), failed", E_FAIL);
    }
    Bstr transportInfo;
    if (getTransportTypeFromPortMapData(address.get(), transportInfo.put()) != S_OK) {
        Log(2, "JobControlFactory::checkPortMap, returning empty string\n");
        return {};
    }
    Log(4, "JobControlFactory::checkPortMap, transportInfo: %S\n", transportInfo.get());
    CString result = NarrowForm(transportInfo.get());
    WNCOM_LOG(3, "JobControlFactory::checkPortMap() succeeded, result is %S", WidenToBstr(CP_ACP, result).get());
    return result;
}

HRESULT JobControlFactory::getTransportTypeFromPortMapData(BSTR serviceAddress, BSTR* transportInfo) {
    const TraceScope trace("JobControlFactory::getTransportTypeFromPortMapData", ".\\JobControlFactory", 611);
    Log(4, "Entering JobControlFactory::getTransportTypeFromPortMapData, looking for serviceAddress: %S",
        serviceAddress);
    Log(4, "JobControlFactory::getTransportTypeFromPortMapData, create wendrel factory succeeded");
    Search search{};
    search.address = serviceAddress;
    if (const HRESULT status = search.portMap.CreateInstance(kProgIdPortMap); FAILED(status)) {
        Log(2, "JobControlFactory::getTransportTypeFromPortMapData, create PortMap failed");
        return status;
    }
    Log(4, "JobControlFactory::getTransportTypeFromPortMapData, create port map succeeded");
    for (const Step& step : kSteps) {
        const HRESULT status = step.call(search);
        if (step.demand == Demand::ExactlyOk ? status == S_OK : SUCCEEDED(status)) continue;
        Log(2, step.failure);
        return status;
    }

    try {
        Bstr entry;
        const HRESULT status = ServiceWalk(*search.services.get(), serviceAddress).Run(entry);
        *transportInfo = entry.detach();
        return status;
    } catch (...) {
        Log(2, "JobControlFactory::getTransportTypeFromPortMapData, unexpected exception, failing!");
        return E_FAIL;
    }
}

}  // namespace wncom
