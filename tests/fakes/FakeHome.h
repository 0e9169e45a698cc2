// A home in which the fake components are registered and a catalogue lists the fake transport libraries.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "tests/fakes/FakeScript.h"
#include "tests/support/TestHome.h"

namespace wncom::test {

// Writes one value under the key that names the folders.
inline void SetFolderValue(const char* name, const std::string& data, DWORD type = REG_SZ) {
    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Quillbeck\\QBNorvel\\Logging", 0, nullptr,
                                             REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr, &key, nullptr));
    EXPECT_EQ(ERROR_SUCCESS, RegSetValueExA(key, name, 0, type, reinterpret_cast<const BYTE*>(data.c_str()),
                                            static_cast<DWORD>(data.size())));
    EXPECT_EQ(ERROR_SUCCESS, RegCloseKey(key));
}

// The terminator belongs to the data.
inline std::string Terminated(const std::string& text) { return std::string(text.c_str(), text.size() + 1); }

inline const char* const kFakeAddress = "http://device/service";

// Network devices are served by FakeTransport, the type "b" by FakeTransportB; the port map answers "network" for
// kFakeAddress.
inline void SetUpFakeHome() {
    Script().Reset();
    static const HRESULT registered = RegisterFakeComponents(ProgramFolder());  // it stays so for the process
    ASSERT_EQ(S_OK, registered);
    SetFolderValue("pathtotransportsxml", Terminated("C:\\catalogue\\"));
    SetFolderValue("builddllpath", Terminated(ProgramFolder() + "/"));
    Script().SetCatalogue("net", {{"net", "FakeTransport.dll"},
                                  {"b", "FakeTransportB.dll"},
                                  {"same", "FakeTransport.dll"},
                                  {"nomaker", "FakeTransportNoMaker.dll"},
                                  {"nodemaker", "FakeTransportNoDemaker.dll"},
                                  {"missing", "NoSuchTransport.dll"},
                                  {"foreign", "\xE2\x82\xAC.dll"}});
    Script().SetServices({{kFakeAddress, "network"}});
}

}  // namespace wncom::test
