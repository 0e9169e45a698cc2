#include <gtest/gtest.h>
#include <windows.h>

#include <ole2.h>

#include <cstring>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "tests/platform/OnWine.h"
#include "tests/support/TestHome.h"

namespace {

using wncom::test::OnWine;
using wncom::test::ProgramFolder;

constexpr CLSID kClass{0x1B1F5C1E, 0x0C57, 0x4B0E, {0x9A, 0x5B, 0x2A, 0x63, 0x11, 0x7E, 0x40, 0x01}};
constexpr char kClassText[] = "{1B1F5C1E-0C57-4B0E-9A5B-2A63117E4001}";
constexpr CLSID kUnknownClass{0x1B1F5C1E, 0x0C57, 0x4B0E, {0x9A, 0x5B, 0x2A, 0x63, 0x11, 0x7E, 0x40, 0xFF}};

std::string ServerPath() { return ProgramFolder() + "/platform_server.dll"; }

bool ServerIsLoaded() {
    HMODULE module;
    return GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT, ServerPath().c_str(), &module) != FALSE;
}

void SetText(const std::string& path, LPCSTR name, const std::string& text) {
    HKEY key;
    ASSERT_EQ(RegCreateKeyExA(HKEY_CLASSES_ROOT, path.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr), 0);
    EXPECT_EQ(RegSetValueExA(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                             static_cast<DWORD>(text.size() + 1)),
              0);
    RegCloseKey(key);
}

void Register(const std::string& module) {
    const std::string server = std::string("CLSID\\") + kClassText + "\\InprocServer32";
    SetText(server, nullptr, module);
    // Objects of a class without a model live on the process's first thread, and calls of others wait for it.
    SetText(server, "ThreadingModel", "Apartment");
    SetText("WncomTests.Class\\CLSID", nullptr, kClassText);
}

class Com : public testing::Test {
protected:
    void SetUp() override {
        Register(ServerPath());
        ASSERT_EQ(CoInitialize(nullptr), S_OK);
    }
    void TearDown() override {
        CoUninitialize();
        RegDeleteTreeA(HKEY_CLASSES_ROOT, (std::string("CLSID\\") + kClassText).c_str());
        RegDeleteTreeA(HKEY_CLASSES_ROOT, "WncomTests.Class");
    }
};

HRESULT Create(IUnknown** object, DWORD context = CLSCTX_INPROC_SERVER, REFCLSID clsid = kClass) {
    return CoCreateInstance(clsid, nullptr, context, IID_IUnknown, reinterpret_cast<LPVOID*>(object));
}

TEST_F(Com, CreatesAnObjectOfARegisteredClass) {
    CLSID clsid;
    ASSERT_EQ(CLSIDFromProgID(OLESTR("wncomtests.CLASS"), &clsid), S_OK);
    EXPECT_EQ(clsid, kClass);
    IUnknown* object = nullptr;
    ASSERT_EQ(Create(&object, 7, clsid), S_OK);
    EXPECT_EQ(object->Release(), 0U);
}

TEST_F(Com, NeedsInitialisationOnTheCallingThread) {
    std::thread([] {
        auto* object = reinterpret_cast<IUnknown*>(1);
        EXPECT_EQ(Create(&object), CO_E_NOTINITIALIZED);
        EXPECT_EQ(object, nullptr);
        EXPECT_EQ(CoInitialize(nullptr), S_OK);
        EXPECT_EQ(CoInitialize(nullptr), S_FALSE);
        CoUninitialize();
        EXPECT_EQ(Create(&object), S_OK);
        object->Release();
        CoUninitialize();
        EXPECT_EQ(Create(&object), CO_E_NOTINITIALIZED);
    }).join();
}

TEST_F(Com, HasNoClassThatIsNotRegisteredInTheWantedContext) {
    auto* object = reinterpret_cast<IUnknown*>(1);
    EXPECT_EQ(Create(&object, 7, kUnknownClass), REGDB_E_CLASSNOTREG);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(Create(&object, CLSCTX_LOCAL_SERVER), REGDB_E_CLASSNOTREG);
    EXPECT_EQ(Create(nullptr), E_POINTER);
}

TEST_F(Com, SaysWhatIsWrongWithAServer) {
    IUnknown* object = nullptr;
    Register(ProgramFolder() + "/absent.dll");
    // Wine has statuses of its own for both.
    EXPECT_TRUE(Create(&object) == HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND) || OnWine());
    EXPECT_EQ(object, nullptr);
    Register(ProgramFolder() + "/platform_no_server.dll");
    const HRESULT status = Create(&object);
    EXPECT_TRUE(status == CO_E_ERRORINDLL || (OnWine() && FAILED(status)));
    EXPECT_EQ(object, nullptr);
    Register(ServerPath());
    ASSERT_EQ(Create(&object), S_OK);
    object->Release();
}

TEST_F(Com, AsksTheServerForTheWantedInterfaceOnly) {
    void* object = this;
    EXPECT_EQ(CoCreateInstance(kClass, nullptr, 1, IID_IDispatch, &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
    IUnknown* outer = nullptr;
    ASSERT_EQ(Create(&outer), S_OK);
    EXPECT_EQ(CoCreateInstance(kClass, outer, 1, IID_IUnknown, &object), CLASS_E_NOAGGREGATION);
    outer->Release();
}

TEST_F(Com, UnloadsAServerWithoutObjectsOnly) {
    IUnknown* object = nullptr;
    ASSERT_EQ(Create(&object), S_OK);
    CoFreeUnusedLibraries();
    EXPECT_TRUE(ServerIsLoaded());
    object->Release();
    EXPECT_TRUE(ServerIsLoaded());
    CoFreeUnusedLibraries();
    EXPECT_FALSE(ServerIsLoaded());
    ASSERT_EQ(Create(&object), S_OK);
    object->Release();
}

TEST_F(Com, UnloadsItsServersWithTheProcesssLastUninitialisation) {
    IUnknown* object = nullptr;
    ASSERT_EQ(Create(&object), S_OK);
    object->Release();
    std::thread([] {
        CoInitialize(nullptr);
        CoUninitialize();
    }).join();
    EXPECT_TRUE(ServerIsLoaded());
    CoUninitialize();
    EXPECT_FALSE(ServerIsLoaded());
    CoInitialize(nullptr);
}

TEST_F(Com, CreatesAndUnloadsFromManyThreadsAtOnce) {
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([] {
            CoInitialize(nullptr);
            for (int i = 0; i < 200; ++i) {
                IUnknown* object = nullptr;
                EXPECT_EQ(Create(&object), S_OK);
                if (object) object->Release();
            }
            CoUninitialize();
        });
    }
    for (std::thread& thread : threads) thread.join();
    CoFreeUnusedLibraries();
    EXPECT_FALSE(ServerIsLoaded());
}

TEST_F(Com, KnowsNoClassUnderATextThatNamesNone) {
    CLSID clsid = kClass;
    for (const OLECHAR* text : {OLESTR("WncomTests.None"), OLESTR("")}) {
        EXPECT_EQ(CLSIDFromProgID(text, &clsid), CO_E_CLASSSTRING);
        EXPECT_EQ(clsid, GUID_NULL);
    }
    for (const char* wrong : {"{not a class}", "1B1F5C1E-0C57-4B0E-9A5B-2A63117E4001",
                              "{1B1F5C1E-0C57-4B0E-9A5B-2A63117E400G}", "{1B1F5C1E-0C57-4B0E-9A5B-2A63117E400}"}) {
        SetText("WncomTests.Class\\CLSID", nullptr, wrong);
        EXPECT_EQ(CLSIDFromProgID(OLESTR("WncomTests.Class"), &clsid), CO_E_CLASSSTRING) << wrong;
        // Wine leaves what it had read when the text went wrong.
        EXPECT_TRUE(clsid == GUID_NULL || OnWine());
    }
    SetText("WncomTests.Class\\CLSID", nullptr, "{1b1f5c1e-0c57-4b0e-9a5b-2a63117e4001}");
    EXPECT_EQ(CLSIDFromProgID(OLESTR("WncomTests.Class"), &clsid), S_OK);
    EXPECT_EQ(clsid, kClass);
    EXPECT_EQ(CLSIDFromProgID(nullptr, &clsid), E_INVALIDARG);
    EXPECT_EQ(CLSIDFromProgID(OLESTR("x"), nullptr), E_INVALIDARG);
}

TEST(Guids, AreWrittenWhereThereIsRoom) {
    OLECHAR text[39];
    ASSERT_EQ(StringFromGUID2(kClass, text, 39), 39);
    EXPECT_EQ(std::basic_string<WCHAR>(text), OLESTR("{1B1F5C1E-0C57-4B0E-9A5B-2A63117E4001}"));
    EXPECT_EQ(StringFromGUID2(kClass, text, 38), 0);
}

TEST(Guids, OfTheSystemAreTheSystems) {
    const struct {
        const GUID& guid;
        const OLECHAR* text;
    } cases[] = {
        {GUID_NULL, OLESTR("{00000000-0000-0000-0000-000000000000}")},
        {IID_IUnknown, OLESTR("{00000000-0000-0000-C000-000000000046}")},
        {IID_IClassFactory, OLESTR("{00000001-0000-0000-C000-000000000046}")},
        {IID_IDispatch, OLESTR("{00020400-0000-0000-C000-000000000046}")},
        {IID_IErrorInfo, OLESTR("{1CF2B120-547D-101B-8E65-08002B2BD119}")},
        {IID_ICreateErrorInfo, OLESTR("{22F03340-547D-101B-8E65-08002B2BD119}")},
        {IID_ITypeInfo, OLESTR("{00020401-0000-0000-C000-000000000046}")},
        {IID_ITypeLib, OLESTR("{00020402-0000-0000-C000-000000000046}")},
    };
    for (const auto& each : cases) {
        OLECHAR text[39];
        ASSERT_EQ(StringFromGUID2(each.guid, text, 39), 39);
        EXPECT_EQ(std::basic_string_view<OLECHAR>(text), each.text);
    }
}

TEST(Guids, AreRandomAndDiffer) {
    const auto less = [](const GUID& a, const GUID& b) { return std::memcmp(&a, &b, sizeof a) < 0; };
    std::set<GUID, decltype(less)> seen(less);
    for (int i = 0; i < 2000; ++i) {
        GUID guid;
        ASSERT_EQ(CoCreateGuid(&guid), S_OK);
        EXPECT_EQ(guid.Data3 >> 12, 4);
        EXPECT_EQ(guid.Data4[0] >> 6, 2);
        EXPECT_TRUE(seen.insert(guid).second);
    }
}

}  // namespace
