// A client whose static objects end after those of the modules that it loaded: exit_client. Its status is 0 when the
// class objects that it holds still serve it then.
#include <windows.h>

#include <ole2.h>

#include <cstdlib>
#include <string>

#include "wncom/PortMap.h"
#include "wncom/wnCOM.h"

namespace {

struct LastClient {
    ~LastClient() {
        IUnknown* object = nullptr;
        if (!factory || FAILED(factory->CreateInstance(nullptr, IID_IUnknown, reinterpret_cast<void**>(&object)))) {
            std::_Exit(3);
        }
        object->Release();
        factory->Release();
    }
    IClassFactory* factory = nullptr;
};
LastClient g_agents;
LastClient g_portMaps;

void Begin(LastClient& client, const char* module, REFCLSID clsid) {
    using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
    char path[MAX_PATH * 4] = {};
    GetModuleFileNameA(nullptr, path, sizeof(path));
    std::string file(path);
    file.replace(file.find_last_of("/\\") + 1, std::string::npos, module);
    const HMODULE loaded = LoadLibraryA(file.c_str());
    if (!loaded) std::_Exit(2);
    const auto entry =
        reinterpret_cast<GetClassObject>(reinterpret_cast<void (*)()>(GetProcAddress(loaded, "DllGetClassObject")));
    entry(clsid, IID_IClassFactory, reinterpret_cast<void**>(&client.factory));
}

}  // namespace

int main() {
    CoInitialize(nullptr);
    Begin(g_agents, "wnCOM.dll", wncom::CLSID_Wendrel);
    Begin(g_portMaps, "wnComponents.dll", wncom::CLSID_PortMap);
    return 0;
}
