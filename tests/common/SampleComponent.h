// The component of SampleComponent.dll, whose behaviour tests choose.
#pragma once

#include <windows.h>

#include <ole2.h>

namespace wncom::test {

inline constexpr CLSID kSampleClass = {0x5d3c7c1e, 0x2b0a, 0x4f5d, {0x9d, 0x11, 0x3a, 0x4e, 0x77, 0x02, 0x5c, 0x90}};
inline constexpr char kSampleClassText[] = "{5D3C7C1E-2B0A-4F5D-9D11-3A4E77025C90}";
inline constexpr char kSampleProgId[] = "WncomTest.Sample";
inline constexpr const OLECHAR* kSampleProgIdWide = OLESTR("WncomTest.Sample");

// What the module does in the environment variable of that name: "refuse registration", "throw in registration",
// "refuse creation"; anything else succeeds.
inline constexpr char kSampleBehaviour[] = "WNCOM_TEST_SAMPLE";

struct ISample : IUnknown {
    static constexpr IID kIid = {0x0c8a4d52, 0x91f7, 0x4c36, {0xa2, 0x6e, 0x58, 0x0d, 0xe1, 0x4b, 0x93, 0x27}};

    // The number of references that the module's objects have.
    virtual LONG STDMETHODCALLTYPE References() = 0;
};

}  // namespace wncom::test
