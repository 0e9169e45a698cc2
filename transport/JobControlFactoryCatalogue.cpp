// JobControlFactory reads "Transports.xml": where it is, and what it lists.
#include <cstdio>
#include <new>
#include <string>
#include <utility>

#include "common/CPException.h"
#include "transport/JobControlFactory.h"
#include "transport/RegistryPaths.h"
#include "wncom/Bstr.h"

namespace wncom {
namespace {

constexpr const OLECHAR* kCatalogueFile = OLESTR("Transports.xml");
constexpr const OLECHAR* kNetworkMappingQuery = OLESTR("./networkmapping");
constexpr const OLECHAR* kPathQuery = OLESTR("./path");
constexpr const OLECHAR* kDllQuery = OLESTR("./transportdlls/jobcontrol/dll[");
constexpr LONG kFirstMatch = 4;
constexpr LONG kAllMatches = 0;

// The formats take one status.
[[noreturn]] void FailWith(const char* format, HRESULT status) {
    char text[128];
    std::snprintf(text, sizeof(text), format, static_cast<int>(status));
    Log(2, text);
    throw CPException(text, status);
}

HRESULT GetXML(IXMLSimpleAccessor& accessor, const OLECHAR* query, LONG flag, CPBstrBuffer& text) {
    const Bstr copy(query);
    return copy ? accessor.GetXML(copy.get(), flag, text.put()) : E_OUTOFMEMORY;
}

bool NothingFound(HRESULT status) { return FAILED(status) || status == S_FALSE; }

// The query for one part of the index-th dll element, counted from 1.
std::basic_string<WCHAR> DllQuery(int index, const OLECHAR* part) {
    const std::string number = std::to_string(index);
    std::basic_string<WCHAR> query(kDllQuery);
    query.append(number.begin(), number.end());
    return query.append(OLESTR("]/")).append(part);
}

// A text that the accessor gave without any storage is an empty one.
std::basic_string<WCHAR> String(const CPBstrBuffer& text) {
    return text.Text() ? std::basic_string<WCHAR>(text.Text()) : std::basic_string<WCHAR>();
}

}  // namespace

CPHeapBuffer JobControlFactory::GetPathToTransportsXMLFromRegistry() {
    Log(4, "Starting GetPathToTransportsXMLFromRegistry().");
    try {
        return GetPathFromRegistry("pathtotransportsxml");
    } catch (const CPException& exception) {
        Log(2, "JobControlFactory::GetPathToTransportsXMLFromRegistry() got exception from GetPathFromRegistry(): %s",
            exception.what());
        throw CPException(
            "JobControlFactory::GetPathToTransportsXMLFromRegistry() got exception from GetPathFromRegistry()",
            E_FAIL);
    }
}

CPHeapBuffer JobControlFactory::GetPathToBuildDllsFromRegistry() {
    Log(4, "Starting GetPathToBuildDllsFromRegistry().");
    try {
        return GetPathFromRegistry("builddllpath");
    } catch (const CPException& exception) {
        Log(2, "JobControlFactory::GetPathToBuildDllsFromRegistry() got exception from GetPathFromRegistry(): %s",
            exception.what());
        throw CPException(
            "JobControlFactory::GetPathToBuildDllsFromRegistry() got exception from GetPathFromRegistry()", E_FAIL);
    }
}

CPComPtr<IXMLSimpleAccessor> JobControlFactory::GetAccessor() {
    Log(3, "Entering JobControlFactory::GetAccessor()");
    try {
        const CPHeapBuffer folder = GetPathToTransportsXMLFromRegistry();
        m_WorkingDir.Assign(folder.Text());
        // Without its folder the file would be looked for elsewhere.
        if (m_WorkingDir.Length() != folder.Length()) throw std::bad_alloc();
    } catch (const CPException& exception) {
        Log(2, "JobControlFactory::GetAccessor() got exception from GetPathTo....(): %s", exception.what());
        throw CPException("JobControlFactory::GetAccessor() got exception from GetPathTo....()", E_FAIL);
    }
    WNCOM_LOG(4, "JobControlFactory::GetAccessor() - workingDir from GetPathTo....(): %s",
              m_WorkingDir.GetMultiByte());
    m_WorkingDir.Append(kCatalogueFile);
    WNCOM_LOG(4, "JobControlFactory::GetAccessor() - full path to transports file: %s", m_WorkingDir.GetMultiByte());

    CPComPtr<IXMLSimpleAccessor> accessor;
    HRESULT status = accessor.CreateInstance(kProgIdXMLSimpleAccessor);
    if (FAILED(status)) {
        Log(2, "JobControlFactory::GetAccessor(), failed to create instance of XMLSimpleAccessor");
    } else {
        Log(4, "JobControlFactory::GetAccessor() - create simple accessor succeeded");
        const Bstr path(m_WorkingDir.Text());
        status = path ? accessor->LoadXML(path.get()) : E_OUTOFMEMORY;
        if (SUCCEEDED(status)) {
            Log(4, "JobControlFactory::GetAccessor(), load XML succeeded.");
            return accessor;
        }
        Log(2, "JobControlFactory::GetAccessor(), problem loading XML");
    }
    FailWith("JobControlFactory::GetAccessor(), error code:%d see log messages", status);
}

void JobControlFactory::LoadTransportInfo(CPComPtr<IXMLSimpleAccessor> accessor) {
    constexpr const char* kFailure = "JobControlFactory::LoadTransportInfo(), error code:%d see log messages";
    Log(3, "Entering JobControlFactory::LoadTransportInfo()");
    const Bstr delimiter(OLESTR(";"));
    if (const HRESULT status = delimiter ? accessor->SetDelimiter(delimiter.get()) : E_OUTOFMEMORY; FAILED(status)) {
        Log(2, "JobControlFactory::LoadTransportInfo(), unable to set delimiter");
        FailWith(kFailure, status);
    }
    Log(4, "JobControlFactory::LoadTransportInfo(), create SimpleAccessor succeeded");

    Log(4, "JobControlFactory::LoadTransportInfo(), CPNMPath: %S", kNetworkMappingQuery);
    CPBstrBuffer networkMapping;
    if (NothingFound(GetXML(*accessor.get(), kNetworkMappingQuery, kFirstMatch, networkMapping))) {
        Log(2, "JobControlFactory::LoadTransportInfo(), GetXML on network mapping failed");
        FailWith(kFailure, E_FAIL);
    }
    m_NetworkMapping = std::move(networkMapping);
    Log(4, "JobControlFactory::LoadTransportInfo(), network mapping: %S", m_NetworkMapping.Text());

    Log(4, "JobControlFactory::LoadTransportInfo(), CPPathPath: %S", kPathQuery);
    CPBstrBuffer path;
    if (NothingFound(GetXML(*accessor.get(), kPathQuery, kFirstMatch, path))) {
        Log(2, "JobControlFactory::LoadTransportInfo(), GetXML on path failed");
        FailWith(kFailure, E_FAIL);
    }
    WNCOM_LOG(4, "JobControlFactory::LoadTransportInfo(), CPResultPath: %s", path.GetMultiByte());

    try {
        const CPHeapBuffer folder = GetPathToBuildDllsFromRegistry();
        m_BuildDllPath.Assign(folder.Text());
        // Without its folder a library's name would be looked up elsewhere.
        if (m_BuildDllPath.Length() != folder.Length()) throw std::bad_alloc();
    } catch (const CPException& exception) {
        Log(2, "JobControlFactory::LoadTransportInfo() got exception from GetPathTo....(): %s", exception.what());
        throw CPException("JobControlFactory::LoadTransportInfo() got exception from GetPathTo....()", E_FAIL);
    }
    WNCOM_LOG(4, "JobControlFactory::LoadTransportInfo(), path: %s", m_BuildDllPath.GetMultiByte());

    if (const HRESULT status = LoadDlls(*accessor.get()); FAILED(status)) FailWith(kFailure, status);
}

HRESULT JobControlFactory::LoadDlls(IXMLSimpleAccessor& accessor) {
    CPBstrBuffer type;
    CPBstrBuffer name;
    for (int index = 1;; ++index) {
        const std::basic_string<WCHAR> typeQuery = DllQuery(index, OLESTR("type"));
        const std::basic_string<WCHAR> nameQuery = DllQuery(index, OLESTR("name"));
        Log(4, "JobControlFactory::LoadTransportInfo(), getIndex is now: %d", index);
        Log(4, "JobControlFactory::LoadTransportInfo(), CPPathTypeTrack: %S", typeQuery.c_str());
        Log(4, "JobControlFactory::LoadTransportInfo(), CPPathNameTrack: %S", nameQuery.c_str());

        // The list ends where no further type is found.
        if (NothingFound(GetXML(accessor, typeQuery.c_str(), kAllMatches, type))) {
            Log(2, "JobControlFactory::LoadTransportInfo(), GetXML on type failed");
            return S_OK;
        }
        Log(4, "JobControlFactory::LoadTransportInfo(), CPResultType: %S", type.Text());

        if (const HRESULT status = GetXML(accessor, nameQuery.c_str(), kAllMatches, name); NothingFound(status)) {
            Log(4, "JobControlFactory::LoadTransportInfo(), XML name get failed");
            return status;
        }
        Log(4, "JobControlFactory::LoadTransportInfo(), CPResultName: %S", name.Text());

        if (m_Dlls.emplace(String(type), String(name)).second) {
            Log(4,
                "JobControlFactory::LoadTransportInfo(), successfully inserted into dlls map a type/name pair for %S",
                type.Text());
        } else {
            Log(4, "JobControlFactory::LoadTransportInfo(), type/name pair for %S already in dlls map", type.Text());
        }
    }
}

}  // namespace wncom
