// Turns a device's service address into a live job-control object.
#pragma once

#include <windows.h>

#include <map>
#include <string>

#include "common/CPWStringBuffer.h"
#include "wncom/CPComPtr.h"
#include "wncom/CString.h"
#include "wncom/Logging.h"
#include "wncom/RmtJobControl.h"
#include "wncom/XMLSimpleAccessor.h"

namespace wncom {

// Chooses the transport library for an address, from the catalogue and the port map, keeps one library loaded at a
// time and makes and destroys job-control objects through it.
//
// Its owner constructs it, calls Initialize once, then Create and Delete, and hands every object that Create
// returned to Delete before the next Create and before destruction. All of it on one thread, on which the factory
// keeps COM initialised. Failures are thrown as CPException; other exceptions (out of memory, whatever a library or
// a component throws) pass through.
class JobControlFactory {
public:
    JobControlFactory() noexcept;
    JobControlFactory(const JobControlFactory&) = delete;
    JobControlFactory& operator=(const JobControlFactory&) = delete;
    ~JobControlFactory();

    // Reads the catalogue. After a failure what was read so far stays, and nothing reads it again.
    void Initialize();

    // The object that the chosen library's maker returned; null when it returned null. The library stays loaded
    // until another one is chosen or the factory is destroyed.
    RmtJobControl* Create(CString serviceAddress);
    // Gives an object back to the library that is loaded; null is handed on as well.
    void Delete(RmtJobControl* jobControl) noexcept;

    // ---- the steps of Initialize ----
    static CPHeapBuffer GetPathToTransportsXMLFromRegistry();
    static CPHeapBuffer GetPathToBuildDllsFromRegistry();
    // An accessor that has loaded the catalogue file.
    CPComPtr<IXMLSimpleAccessor> GetAccessor();
    void LoadTransportInfo(CPComPtr<IXMLSimpleAccessor> accessor);

    // ---- the steps of Create ----
    // Loads the library for the address, unless it is the one that is loaded. True always: failures are thrown.
    bool selectBinary(CString serviceAddress);
    // The port map's transport entry for the address, in the system's narrow code page; empty when there is none.
    CString checkPortMap(CString serviceAddress);
    // Walks the port map's records. S_OK: transportInfo, which must point to null, holds a new text, or null when no
    // service matched. Any other status: the walk broke off, and what is held there must not be used, only freed.
    HRESULT getTransportTypeFromPortMapData(BSTR serviceAddress, BSTR* transportInfo);

private:
    using WideString = std::basic_string<WCHAR>;

    HRESULT LoadDlls(IXMLSimpleAccessor& accessor);
    CPBstrBuffer ChooseType(const CString& entry);
    // A path that is not whole is no path of a library, and loading it fails.
    void LoadTransportLibrary(const CString& path, bool whole, const CString& type);

    CPBstrBuffer m_DllName;         // file name of the library chosen last
    HMODULE m_hModule = nullptr;    // loaded from m_DllPath
    CString m_DllPath;              // of the library that is loaded, or that was tried last
    CPBstrBuffer m_NetworkMapping;  // transport type of network devices
    CPBstrBuffer m_BuildDllPath;    // folder of the libraries, with its trailing separator
    // Transport type to file name. WCHAR compares as an unsigned unit, so the order and the match are exact.
    std::map<WideString, WideString> m_Dlls;
    CPBstrBuffer m_WorkingDir;  // path of the catalogue file
    LogReference m_Logging;
};

}  // namespace wncom
