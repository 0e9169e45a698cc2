#include <gtest/gtest.h>
#include <windows.h>

#include <ole2.h>

#include <string_view>
#include <thread>

#include "include/wncom/Bstr.h"

namespace {

using wncom::Bstr;
using View = std::basic_string_view<OLECHAR>;

constexpr GUID kId{0x1B1F5C1E, 0x0C57, 0x4B0E, {0x9A, 0x5B, 0x2A, 0x63, 0x11, 0x7E, 0x40, 0x02}};

// A text as the system's headers want it.
OLECHAR* Mutable(const OLECHAR* text) { return const_cast<OLECHAR*>(text); }

ICreateErrorInfo* Make(const OLECHAR* description) {
    ICreateErrorInfo* made = nullptr;
    EXPECT_EQ(CreateErrorInfo(&made), S_OK);
    EXPECT_EQ(made->SetDescription(Mutable(description)), S_OK);
    return made;
}

// Leaves an object with this description on the thread, which alone owns it then.
void Leave(const OLECHAR* description) {
    ICreateErrorInfo* made = Make(description);
    IErrorInfo* info = nullptr;
    ASSERT_EQ(made->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&info)), S_OK);
    EXPECT_EQ(SetErrorInfo(0, info), S_OK);
    info->Release();
    EXPECT_EQ(made->Release(), 1U);
}

// Takes the thread's object and gives its description; empty when there is none.
std::basic_string<OLECHAR> Take() {
    IErrorInfo* info = nullptr;
    if (GetErrorInfo(0, &info) != S_OK) return {};
    Bstr description;
    EXPECT_EQ(info->GetDescription(description.put()), S_OK);
    EXPECT_EQ(info->Release(), 0U);
    return std::basic_string<OLECHAR>(description.view());
}

TEST(ErrorInfo, GivesBackWhatWasSetOnIt) {
    ICreateErrorInfo* made = Make(OLESTR("first"));
    EXPECT_EQ(made->SetDescription(Mutable(OLESTR("the device said no"))), S_OK);
    EXPECT_EQ(made->SetSource(Mutable(OLESTR("library"))), S_OK);
    EXPECT_EQ(made->SetHelpFile(Mutable(OLESTR("help"))), S_OK);
    EXPECT_EQ(made->SetHelpContext(7), S_OK);
    EXPECT_EQ(made->SetGUID(kId), S_OK);
    IErrorInfo* info = nullptr;
    ASSERT_EQ(made->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&info)), S_OK);
    Bstr source, description, helpFile;
    DWORD context = 0;
    GUID id;
    EXPECT_EQ(info->GetSource(source.put()), S_OK);
    EXPECT_EQ(info->GetDescription(description.put()), S_OK);
    EXPECT_EQ(info->GetHelpFile(helpFile.put()), S_OK);
    EXPECT_EQ(info->GetHelpContext(&context), S_OK);
    EXPECT_EQ(info->GetGUID(&id), S_OK);
    EXPECT_EQ(source.view(), View(OLESTR("library")));
    EXPECT_EQ(description.view(), View(OLESTR("the device said no")));
    EXPECT_EQ(helpFile.view(), View(OLESTR("help")));
    EXPECT_EQ(context, 7U);
    EXPECT_TRUE(IsEqualGUID(id, kId));
    EXPECT_EQ(made->SetSource(nullptr), S_OK);
    EXPECT_EQ(info->GetSource(source.put()), S_OK);
    EXPECT_EQ(source.length(), 0U);
    info->Release();
    EXPECT_EQ(made->Release(), 0U);
}

TEST(ErrorInfo, IsOneObjectWithBothInterfaces) {
    ICreateErrorInfo* made = Make(OLESTR("x"));
    void *one = nullptr, *other = nullptr, *none = made;
    IErrorInfo* info = nullptr;
    ASSERT_EQ(made->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&info)), S_OK);
    EXPECT_EQ(made->QueryInterface(IID_IUnknown, &one), S_OK);
    EXPECT_EQ(info->QueryInterface(IID_IUnknown, &other), S_OK);
    EXPECT_EQ(one, other);
    EXPECT_EQ(info->QueryInterface(IID_IDispatch, &none), E_NOINTERFACE);
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(info->QueryInterface(IID_ICreateErrorInfo, &none), S_OK);
    EXPECT_EQ(none, made);
    for (int i = 0; i < 4; ++i) made->Release();
    EXPECT_EQ(made->Release(), 0U);
}

TEST(ErrorInfo, IsTakenOnceAndReplacedByTheNext) {
    IErrorInfo* info = reinterpret_cast<IErrorInfo*>(1);
    EXPECT_EQ(GetErrorInfo(0, &info), S_FALSE);
    EXPECT_EQ(info, nullptr);
    Leave(OLESTR("old"));
    Leave(OLESTR("new"));
    EXPECT_EQ(Take(), OLESTR("new"));
    EXPECT_EQ(Take(), OLESTR(""));
    Leave(OLESTR("cleared"));
    EXPECT_EQ(SetErrorInfo(0, nullptr), S_OK);
    EXPECT_EQ(Take(), OLESTR(""));
}

TEST(ErrorInfo, BelongsToTheThreadAndGoesWithIt) {
    Leave(OLESTR("here"));
    ICreateErrorInfo* kept = Make(OLESTR("there"));
    std::thread([kept] {
        EXPECT_EQ(Take(), OLESTR(""));
        IErrorInfo* info = nullptr;
        ASSERT_EQ(kept->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&info)), S_OK);
        EXPECT_EQ(SetErrorInfo(0, info), S_OK);
        EXPECT_EQ(info->Release(), 2U);
    }).join();
    EXPECT_EQ(kept->Release(), 0U);
    EXPECT_EQ(Take(), OLESTR("here"));
}

TEST(ErrorInfo, RefusesReservedNumbersAndMissingPlaces) {
    IErrorInfo* info = nullptr;
    Leave(OLESTR("kept"));
    EXPECT_EQ(SetErrorInfo(1, nullptr), E_INVALIDARG);
    EXPECT_EQ(GetErrorInfo(1, &info), E_INVALIDARG);
    EXPECT_EQ(GetErrorInfo(0, nullptr), E_INVALIDARG);
    EXPECT_EQ(CreateErrorInfo(nullptr), E_INVALIDARG);
    EXPECT_EQ(Take(), OLESTR("kept"));
}

}  // namespace
