// The components module, registered in the test's home and used as its clients use it: by ProgID and interface.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>
#include <ole2.h>

#include <string>
#include <string_view>
#include <vector>

#include "common/CodePageText.h"
#include "tests/support/Com.h"
#include "tests/support/TestHome.h"
#include "wncom/Bstr.h"
#include "wncom/CPComPtr.h"
#include "wncom/PortMap.h"
#include "wncom/XMLSimpleAccessor.h"

namespace wncom::test {

using Lines = std::vector<std::string>;

// "null", or the text with units beyond ASCII written as \uXXXX, so that a failing test shows what differs.
std::string Shown(BSTR text);

// Registers the module and fails a test that leaves one of its objects behind.
class ComponentsFixture : public testing::Test {
protected:
    ComponentsFixture();
    ~ComponentsFixture() override;

    // A file's path on the host, which the layer takes too.
    static std::string PathOf(const std::string& name) { return HomePath() + "/" + name; }

    // What was written to the debugger output since the test began, or since it was forgotten.
    static std::string DebugOutput() { return ReadWholeFile(PathOf("debug.txt")); }
    static void ForgetDebugOutput() { WriteWholeFile(PathOf("debug.txt"), ""); }

private:
    LoadedModule m_module;
    Apartment m_apartment;
};

const std::string kInvalidData = Hex(HRESULT_FROM_WIN32(ERROR_INVALID_DATA));

// What the accessor answers to a query, as "text" or as the status in hex.
std::string Ask(const CPComPtr<IXMLSimpleAccessor>& accessor, std::string_view query, LONG flag = 0);

// Loads a document given by path or as a text.
HRESULT Load(const CPComPtr<IXMLSimpleAccessor>& accessor, WideView document);

// A template of a search for an address.
CPComPtr<IPortMapContent> TemplateFor(std::string_view address);
// The first device that a search finds, and a device's services.
CPComPtr<IPortMapContent> FirstDevice(std::string_view address);
CPComPtr<IPortMapList> ServicesOf(const CPComPtr<IPortMapContent>& device);

// One line a record, "name|address|transport".
Lines Records(const CPComPtr<IPortMapList>& list);

// The default place of the port map's file, on the host.
std::string PortMapPath();

}  // namespace wncom::test
