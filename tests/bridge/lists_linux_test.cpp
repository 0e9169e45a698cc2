// What copying a list does in a home with another code page, and when memory runs out.
#include <gtest/gtest.h>

#include <string>

#include "bridge/RemoteList.h"
#include "tests/support/FailingAllocation.h"
#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

// The code page is read once a process, before a program can set it through the registry's own calls.
TEST(RemoteListTest, ElementsPassThroughTheCodePage) {
    WriteWholeFile(HomePath() + "/registry.reg",
                   "Windows Registry Editor Version 5.00\n\n"
                   "[HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control\\Nls\\CodePage]\n\"ACP\"=\"65001\"\n");
    RemoteArray remote;
    auto* elements = new CString[1];
    elements[0] = "a\xFF";
    remote.Init(elements, 1);
    PCharArray list;
    ASSERT_EQ(RemoteArrayPtrToPCharArray(&remote, &list), 1);
    EXPECT_STREQ(list[0], "a\xEF\xBF\xBD");
}

TEST(RemoteListTest, AListThatCannotBeCopiedWholeIsEmpty) {
    RemoteArray remote;
    auto* elements = new CString[3];
    for (int i = 0; i < 3; ++i) elements[i] = "element";
    remote.Init(elements, 3);
    for (unsigned number = 0;; ++number) {
        PCharArray list;
        LONG count = 0;
        unsigned allocations = 0;
        {
            const FailingAllocation armed(number);
            count = RemoteArrayPtrToPCharArray(&remote, &list);
            allocations = armed.Count();
        }
        if (number > allocations) break;
        ASSERT_EQ(count, number == 0 ? 3 : 0) << "allocation " << number;
        ASSERT_EQ(list != nullptr, number == 0) << "allocation " << number;
    }
}

}  // namespace
}  // namespace wncom::test
