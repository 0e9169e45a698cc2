#include "transport/JobControlFactory.h"

#include <string>
#include <string_view>
#include <utility>

#include "common/CPException.h"
#include "common/CodePageText.h"
#include "common/Owned.h"

namespace wncom {
namespace {

constexpr std::string_view kNetwork = "network";
constexpr std::size_t kPathRoom = 1024;  // in bytes, with the terminator

struct GiveBackMessage {
    void operator()(char* memory) const noexcept { LocalFree(memory); }
};

void LogSystemError(DWORD error) noexcept {
    Owned<char*, GiveBackMessage> text;
    FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                   nullptr, error, MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), reinterpret_cast<LPSTR>(text.put()), 0,
                   nullptr);
    Log(3, "%s\n", text.get());
}

// Appends the text's form in the C locale. False when it has none, or when memory is too short for it: what is left
// of the path could name another library.
bool AppendNarrow(CString& path, const WCHAR* text) {
    CPBstrBuffer copy(text);
    const char* narrow = copy.GetMultiByte();
    if (narrow) path += narrow;
    return narrow || !text || !*text;
}

template <class Function>
Function FindExport(HMODULE module, const char* name) noexcept {
    // The step in between tells the compiler that the change of signature is meant.
    return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(GetProcAddress(module, name)));
}

}  // namespace

JobControlFactory::JobControlFactory() noexcept {
    CoInitialize(nullptr);
    m_Logging.Start("JobControlFactory");
}

JobControlFactory::~JobControlFactory() {
    Delete(nullptr);
    if (m_hModule) {
        if (FreeLibrary(m_hModule)) {
            Log(4, "~JobControlFactory(), successfully freed loaded library.\n");
        } else {
            Log(2, "~JobControlFactory(), free loaded library failed.\n");
        }
    }
    m_Logging.End();
    CoUninitialize();
}

void JobControlFactory::Initialize() {
    Log(3, "Entering JobControlFactory::Initialize()");
    try {
        LoadTransportInfo(GetAccessor());
    } catch (const CPException& exception) {
        Log(2, "JobControlFactory::Initialize() error, %s", exception.what());
        throw;
    }
}

// The key under which the dlls map is asked. It passes through the C locale's narrow form on the way.
CPBstrBuffer JobControlFactory::ChooseType(const CString& entry) {
    CPBstrBuffer key;
    if (entry.empty() || std::string_view(entry) == kNetwork) {
        Log(4, "JobControlFactory::selectBinary, inside if");
        key.Assign(m_NetworkMapping.GetMultiByte());
        WNCOM_LOG(4, "JobControlFactory::selectBinary, requiring network type, using %s.", key.GetMultiByte());
    } else {
        Log(4, "JobControlFactory::selectBinary, inside else");
        key.Assign(entry.c_str());
        WNCOM_LOG(4, "JobControlFactory::selectBinary, requiring non-network type, using %s.", key.GetMultiByte());
    }
    return key;
}

bool JobControlFactory::selectBinary(CString serviceAddress) {
    Log(3, "Entering JobControlFactory::selectBinary().\n");
    WNCOM_LOG(4, "JobControlFactory::selectBinary(), network mapping at this point: %s",
              m_NetworkMapping.GetMultiByte());
    try {
        const CString entry = checkPortMap(serviceAddress);
        WNCOM_LOG(4, "JobControlFactory::selectBinary, netCheck: %S.", OLESTR("network"));
        WNCOM_LOG(4, "JobControlFactory::selectBinary, portMapTransportEntry: %S.", WidenToBstr(CP_ACP, entry).get());
        if (entry.empty()) {
            Log(4, "JobControlFactory::selectBinary, portMapTransportEntry is empty");
        } else {
            Log(4, "JobControlFactory::selectBinary, portMapTransportEntry is NOT empty");
        }
        Log(4, "JobControlFactory::selectBinary, empty: %d", entry.empty() ? 1 : 0);

        CPBstrBuffer key = ChooseType(entry);
        const auto found = m_Dlls.find(key.Text() ? WideString(key.Text()) : WideString());
        if (found == m_Dlls.end()) {
            Log(2, "JobControlFactory::selectBinary, couldn't find %s in the map.\n", key.GetMultiByte());
            throw CPException("JobControlFactory::selectBinary, couldn't find item in the map.\n", E_FAIL);
        }
        const CString type(key.GetMultiByte());
        Log(4, "JobControlFactory::selectBinary, found type %s in the map.", type);

        CString name;
        const bool nameFits = AppendNarrow(name, found->second.c_str());
        m_DllName.Assign(name.c_str());
        WNCOM_LOG(4, "JobControlFactory::selectBinary, m_DllName: %s.", m_DllName.GetMultiByte());
        CString path;
        const bool folderFits = AppendNarrow(path, m_BuildDllPath.Text());
        Log(4, "JobControlFactory::selectBinary, partial m_DllPath: %s.", path);
        path += name;
        Log(4, "JobControlFactory::selectBinary, complete m_DllPath: %s.", path);

        if (m_hModule && path == m_DllPath) {
            Log(4, "JobControlFactory::selectBinary, skipping reload of same DLL");
        } else {
            LoadTransportLibrary(path, nameFits && folderFits, type);
        }
    } catch (const CPException& exception) {
        Log(2, "JobControlFactory::selectBinary() error, %s", exception.what());
        throw CPException("JobControlFactory::selectBinary(), selectBinary failed", E_FAIL);
    }
    Log(3, "Exiting JobControlFactory::selectBinary().\n");
    return true;
}

void JobControlFactory::LoadTransportLibrary(const CString& path, bool whole, const CString& type) {
    Log(4, "JobControlFactory::selectBinary, loading DLL");
    m_DllPath = path;
    if (m_hModule) {
        Log(4, "JobControlFactory::selectBinary, free'ing previous library");
        Delete(nullptr);
        FreeLibrary(std::exchange(m_hModule, nullptr));
    }
    DWORD error = whole ? ERROR_FILENAME_EXCED_RANGE : ERROR_INVALID_NAME;
    if (whole && path.length() < kPathRoom) {
        m_hModule = LoadLibraryA(path.c_str());
        error = GetLastError();
    }
    if (!m_hModule) {
        Log(2, "JobControlFactory::selectBinary, LoadLibrary for %s  failed.\n", type);
        LogSystemError(error);
        throw CPException("JobControlFactory::selectBinary(), LoadLibrary() failed", E_FAIL);
    }
}

RmtJobControl* JobControlFactory::Create(CString serviceAddress) {
    Log(3, "Entering JobControlFactory::Create().\n");
    try {
        if (!selectBinary(serviceAddress)) {
            Log(2, "JobControlFactory::Create(), selectBinary() failed.\n");
            throw CPException("JobControlFactory::Create(), selectBinary() failed.\n", E_FAIL);
        }
        Log(3, "JobControlFactory::Create(). in selectBinary if\n");
        const auto make = FindExport<TransportMake>(m_hModule, "maker");
        const DWORD error = GetLastError();
        Log(3, "JobControlFactory::Create(). after maker\n");
        if (!make) {
            Log(2, "JobControlFactory::Create(), GetProcAddress() failed.\n");
            LogSystemError(error);
            throw CPException("JobControlFactory::Create(), GetProcAddress() failed.\n", E_FAIL);
        }
        Log(3, "JobControlFactory::Create(). in Null if\n");
        RmtJobControl* const jobControl = make();
        Log(4, "JobControlFactory::Create(), GetProcAddress() succeeded.\n");
        Log(3, "Exiting JobControlFactory::Create().\n");
        return jobControl;
    } catch (const CPException& exception) {
        Log(2, "JobControlFactory::Create() error, %s", exception.what());
        throw CPException("JobControlFactory::Create(), Create() failed", E_FAIL);
    }
}

void JobControlFactory::Delete(RmtJobControl* jobControl) noexcept {
    Log(3, "Entering JobControlFactory::Delete().\n");
    if (!m_hModule) {
        Log(3, "Exiting JobControlFactory::Delete(), nothing to do.\n");
        return;
    }
    try {
        if (const auto unmake = FindExport<TransportUnmake>(m_hModule, "demaker")) {
            Log(4, "JobControlFactory::Delete(), GetProcAddress() succeeded.\n");
            unmake(jobControl);
            Log(4, "JobControlFactory::Delete(), called demaker successfully.\n");
        } else {
            Log(4, "JobControlFactory::Delete(), GetProcAddress() failed.\n");
        }
    } catch (const CPException& exception) {
        Log(2, "JobControlFactory::Delete() error, %s", exception.what());
    } catch (...) {
        Log(2, "JobControlFactory::Delete() unknown exception seen.");
    }
    Log(3, "Exiting JobControlFactory::Delete().\n");
}

}  // namespace wncom
