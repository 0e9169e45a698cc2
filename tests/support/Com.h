// What every test that is a COM client needs.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>
#include <ole2.h>

#include <string>
#include <string_view>

#include "wncom/Bstr.h"
#include "wncom/CPComPtr.h"

namespace wncom::test {

// A status as "0x8007000e", so that a failed comparison shows what a reader knows.
std::string Hex(HRESULT status);

// A client's COM apartment on the calling thread.
class Apartment {
public:
    Apartment() { EXPECT_EQ(CoInitialize(nullptr), S_OK); }
    ~Apartment() { CoUninitialize(); }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
};

// The object of a ProgID through the class lookup of COM; empty, with a failed test, when that fails.
template <class Interface>
CPComPtr<Interface> Create(LPCOLESTR progId) {
    CPComPtr<Interface> object;
    CLSID clsid = {};
    EXPECT_EQ(Hex(CLSIDFromProgID(progId, &clsid)), Hex(S_OK));
    EXPECT_EQ(Hex(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, Interface::kIid, object.put_void())),
              Hex(S_OK));
    return object;
}

// ASCII as UTF-16 and back; other characters come back as "?".
std::basic_string<OLECHAR> Wide(std::string_view ascii);
std::string Narrow(BSTR text);
Bstr Text(std::string_view ascii);

// A text value under HKEY_LOCAL_MACHINE; a null name is the key's default value.
void SetRegistryValue(const std::string& key, const char* name, const std::string& value);
// The value as text, or "(absent)".
std::string RegistryValue(HKEY root, const std::string& key, const char* name);
bool RegistryKeyExists(HKEY root, const std::string& key);

// One module loaded by path and used through its exports.
class LoadedModule {
public:
    explicit LoadedModule(const std::string& path) : m_handle(LoadLibraryA(path.c_str())) {
        EXPECT_NE(m_handle, nullptr) << path << ": error " << GetLastError();
    }
    LoadedModule(const LoadedModule&) = delete;
    LoadedModule& operator=(const LoadedModule&) = delete;
    ~LoadedModule() {
        if (m_handle) FreeLibrary(m_handle);
    }

    template <class Function>
    Function Export(const char* name) const {
        return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(GetProcAddress(m_handle, name)));
    }
    // Calls an export without arguments that answers a status.
    HRESULT Call(const char* name) const { return Export<HRESULT(STDAPICALLTYPE*)()>(name)(); }
    HMODULE handle() const { return m_handle; }

private:
    HMODULE m_handle;
};

}  // namespace wncom::test
