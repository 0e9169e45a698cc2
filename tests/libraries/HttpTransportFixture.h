// The HTTP transport as the bridge uses it: loaded by path, its objects made and taken back by its exports.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <oleauto.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "common/OpenKey.h"
#include "tests/support/Contains.h"
#include "tests/support/DeviceProcess.h"
#include "tests/support/ElementText.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestHome.h"
#include "wncom/Bstr.h"
#include "wncom/CPComPtr.h"
#include "wncom/RmtJobControl.h"

namespace wncom::test {

inline constexpr const char* kTicket = "<intentTicket><jobName>Programme</jobName></intentTicket>";

inline std::string Utf8(const Bstr& text) {
    const int units = static_cast<int>(text.length());
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, text.get(), units, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(bytes), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.get(), units, narrow.data(), bytes, nullptr, nullptr);
    return narrow;
}

class HttpTransportTest : public testing::Test {
protected:
    struct Unmaker {
        TransportUnmake unmake = nullptr;
        void operator()(RmtJobControl* object) const { unmake(object); }
    };
    using Object = std::unique_ptr<RmtJobControl, Unmaker>;

    void SetUp() override { Load(); }
    void TearDown() override {
        Unload();
        RegDeleteTreeA(HKEY_LOCAL_MACHINE, kSettings);
    }

    void Load() {
        m_module = LoadLibraryA((ProgramFolder() + "/wnHttpTransport.dll").c_str());
        ASSERT_NE(m_module, nullptr) << "error " << GetLastError();
        m_make = Entry<TransportMake>("maker");
        m_unmake = Entry<TransportUnmake>("demaker");
        ASSERT_TRUE(m_make && m_unmake);
    }
    void Unload() {
        m_unmake(nullptr);
        FreeLibrary(m_module);
    }

    // A fresh object for a service, as after each connection of the bridge.
    Object Make(const std::string& address) {
        Object object(m_make(), Unmaker{m_unmake});
        if (!object) throw std::runtime_error("maker gave no object");
        object->Initialize(CString(address.c_str()), {});
        return object;
    }
    // One with a session.
    Object MakeInSession(const std::string& address) {
        Object object = Make(address);
        object->StartSession();
        return object;
    }
    void Unmake(RmtJobControl* object) { m_unmake(object); }

    static void Set(const char* name, DWORD type, const void* data, DWORD bytes) {
        OpenKey key;
        key.Create(HKEY_LOCAL_MACHINE, kSettings);
        RegSetValueExA(key.get(), name, 0, type, static_cast<const BYTE*>(data), bytes);
    }
    static void SetNumber(const char* name, DWORD value) { Set(name, REG_DWORD, &value, sizeof(value)); }

    // The text of the failure that an action ends with; "none" when it ends without one.
    template <class Action>
    static std::string FailureOf(Action action) {
        try {
            action();
        } catch (const std::exception& failure) {
            return failure.what();
        }
        return "none";
    }

    // The reason that an operation left for the client, which this takes away; "none" when there is none.
    static std::string ReasonLeft() {
        CPComPtr<IErrorInfo> info;
        Bstr description;
        Bstr source;
        if (GetErrorInfo(0, info.put()) != S_OK || FAILED(info->GetDescription(description.put())) ||
            FAILED(info->GetSource(source.put()))) {
            return "none";
        }
        EXPECT_EQ(Utf8(source), "wnHttpTransport");
        return Utf8(description);
    }

private:
    static constexpr const char* kSettings = "SOFTWARE\\Quillbeck\\QBNorvel\\HttpTransport";

    template <class Function>
    Function Entry(const char* name) const {
        return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(GetProcAddress(m_module, name)));
    }

    HMODULE m_module = nullptr;
    TransportMake m_make = nullptr;
    TransportUnmake m_unmake = nullptr;
};

// What an operation left in its slot, as UTF-8; the slots' texts are freed.
class ExceptionSlot {
public:
    BSTR* operator&() { return m_text.put(); }
    std::string Text() const { return Utf8(m_text); }

private:
    Bstr m_text;
};

}  // namespace wncom::test
