#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <string_view>

#include "tests/platform/OnWine.h"
#include "tests/platform/registry/Key.h"

namespace {

using namespace std::string_view_literals;
using wncom::test::Get;
using wncom::test::Key;
using wncom::test::Set;
using wncom::test::SetText;

const std::string kBase = "SOFTWARE\\WncomTests\\Registry";

LSTATUS Query(HKEY key, LPCSTR name) { return RegQueryValueExA(key, name, nullptr, nullptr, nullptr, nullptr); }

class Registry : public testing::Test {
protected:
    void TearDown() override { RegDeleteTreeA(HKEY_LOCAL_MACHINE, "SOFTWARE\\WncomTests"); }
};

TEST_F(Registry, FindsNamesInEitherCase) {
    const struct {
        const char *key, *value, *sameKey, *sameValue;
    } names[] = {{"Plain", "Name", "pLAIN", "nAME"}, {"\xC9t\xE9", "\xDC", "\xE9T\xC9", "\xFC"}};
    for (const auto& each : names) {
        const Key key(kBase + "\\" + each.key);
        ASSERT_EQ(Set(key.get(), each.value, "1"), 0);
        HKEY again;
        ASSERT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE,
                                ("software\\WNCOMTESTS\\registry\\" + std::string(each.sameKey)).c_str(), 0, KEY_READ,
                                &again),
                  0);
        EXPECT_EQ(Get(again, each.sameValue), "1");
        RegCloseKey(again);
    }
}

TEST_F(Registry, KeepsTheTypeAndBytesOfEveryValue) {
    const Key key(kBase);
    const struct {
        DWORD type;
        std::string_view bytes;
    } cases[] = {
        {REG_DWORD, "\x1F\x00\x00\x80"sv},
        {REG_DWORD, "\x01"sv},
        {REG_BINARY, "\x00\xFF"sv},
        {REG_BINARY, ""sv},
        {REG_EXPAND_SZ, "%A%\\b\0"sv},
        {REG_QWORD, "12345678"sv},
        {REG_NONE, "x"sv},
        {REG_SZ, "\0"sv},
        {REG_SZ, "a\"b\\c\\\0"sv},
        {REG_SZ, "two\r\nlines\0"sv},
        {REG_SZ, "\xE4\x80\0"sv},
        {REG_SZ, "open"sv.substr(0, 3)},
    };
    for (const auto& each : cases) {
        ASSERT_EQ(Set(key.get(), "v", each.bytes, each.type), 0);
        DWORD type = 99;
        EXPECT_EQ(Get(key.get(), "v", &type), each.bytes);
        EXPECT_EQ(type, each.type);
    }
}

TEST_F(Registry, KeepsTheDefaultValueUnderNullAndEmptyNames) {
    const Key key(kBase);
    ASSERT_EQ(Set(key.get(), nullptr, "one"), 0);
    EXPECT_EQ(Get(key.get(), ""), "one");
    ASSERT_EQ(RegDeleteValueA(key.get(), ""), 0);
    EXPECT_EQ(Query(key.get(), nullptr), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegDeleteValueA(key.get(), ""), ERROR_FILE_NOT_FOUND);
}

TEST_F(Registry, TellsTheSizeThatABufferNeeds) {
    const Key key(kBase);
    ASSERT_EQ(SetText(key.get(), "v", "12345"), 0);
    BYTE data[8];
    DWORD size = 5, type = 0;
    EXPECT_EQ(RegQueryValueExA(key.get(), "v", nullptr, &type, data, &size), ERROR_MORE_DATA);
    EXPECT_EQ(size, 6U);
    EXPECT_EQ(type, DWORD{REG_SZ});
    size = 0;
    EXPECT_EQ(RegQueryValueExA(key.get(), "v", nullptr, nullptr, nullptr, &size), ERROR_SUCCESS);
    EXPECT_EQ(size, 6U);
    EXPECT_EQ(RegQueryValueExA(key.get(), "v", nullptr, nullptr, data, nullptr), ERROR_INVALID_PARAMETER);
}

// A reader of text may rely on the end where there is room for one.
TEST_F(Registry, EndsATextThatWasStoredWithoutItsEndWhereThereIsRoom) {
    const Key key(kBase);
    ASSERT_EQ(Set(key.get(), "v", "abc"sv.substr(0, 2), REG_SZ), 0);
    char data[5] = "wxyz";
    DWORD size = sizeof data;
    ASSERT_EQ(RegQueryValueExA(key.get(), "v", nullptr, nullptr, reinterpret_cast<LPBYTE>(data), &size), 0);
    EXPECT_EQ(std::string_view(data, 5), "ab\0z\0"sv);
    EXPECT_EQ(size, 2U);
    // One that has its end gets no other.
    ASSERT_EQ(SetText(key.get(), "v", "d"), 0);
    size = sizeof data;
    ASSERT_EQ(RegQueryValueExA(key.get(), "v", nullptr, nullptr, reinterpret_cast<LPBYTE>(data), &size), 0);
    EXPECT_EQ(std::string_view(data, 5), "d\0\0z\0"sv);
    data[2] = 'y';
    ASSERT_EQ(RegQueryValueExA(key.get(), "v", nullptr, nullptr, reinterpret_cast<LPBYTE>(data), &size), 0);
    EXPECT_EQ(std::string_view(data, 5), "d\0yz\0"sv);
}

TEST_F(Registry, RefusesWhatAHandleWasNotOpenedFor) {
    const Key writer(kBase, KEY_WRITE), reader(kBase, KEY_READ);
    ASSERT_EQ(Set(writer.get(), "v", "1"), 0);
    EXPECT_EQ(Set(reader.get(), "v", "2"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegDeleteValueA(reader.get(), "v"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(Query(writer.get(), "v"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(Get(reader.get(), "v"), "1");
}

TEST_F(Registry, TellsNewKeysFromExistingOnes) {
    for (const DWORD expected : {DWORD{REG_CREATED_NEW_KEY}, DWORD{REG_OPENED_EXISTING_KEY}}) {
        HKEY key;
        DWORD disposition = 0;
        ASSERT_EQ(
            RegCreateKeyExA(HKEY_LOCAL_MACHINE, kBase.c_str(), 0, nullptr, 0, KEY_READ, nullptr, &key, &disposition),
            0);
        EXPECT_EQ(disposition, expected);
        RegCloseKey(key);
    }
}

TEST_F(Registry, DoesNotOpenWhatIsAbsentOrNoHandle) {
    HKEY key;
    EXPECT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\WncomTests\\No", 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegOpenKeyExA(nullptr, "SOFTWARE", 0, KEY_READ, &key), ERROR_INVALID_HANDLE);
    // Wine writes through the null pointer.
    if (!wncom::test::OnWine()) {
        EXPECT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE", 0, KEY_READ, nullptr), ERROR_INVALID_PARAMETER);
    }
    EXPECT_EQ(RegCloseKey(nullptr), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegCloseKey(HKEY_LOCAL_MACHINE), ERROR_SUCCESS);
}

TEST_F(Registry, ShowsClassesUnderTheMachine) {
    const Key key("SOFTWARE\\Classes\\WncomTests.Class");
    ASSERT_EQ(Set(key.get(), nullptr, "seen"), 0);
    HKEY root;
    ASSERT_EQ(RegOpenKeyExA(HKEY_CLASSES_ROOT, "WncomTests.Class", 0, KEY_READ, &root), 0);
    EXPECT_EQ(Get(root, nullptr), "seen");
    RegCloseKey(root);
    EXPECT_EQ(RegDeleteTreeA(HKEY_CLASSES_ROOT, "WncomTests.Class"), ERROR_SUCCESS);
}

TEST_F(Registry, DeletesTreesWholeAndInvalidatesTheirHandles) {
    const Key key(kBase), leaf(kBase + "\\Sub\\Leaf");
    ASSERT_EQ(RegDeleteTreeA(HKEY_LOCAL_MACHINE, kBase.c_str()), ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteTreeA(HKEY_LOCAL_MACHINE, kBase.c_str()), ERROR_FILE_NOT_FOUND);
    for (const HKEY handle : {key.get(), leaf.get()}) {
        EXPECT_EQ(Query(handle, "v"), ERROR_KEY_DELETED);
        EXPECT_EQ(Set(handle, "v", "1"), ERROR_KEY_DELETED);
    }
}

TEST_F(Registry, SeesThroughAnOpenHandleWhatAnotherWrites) {
    const Key first(kBase), second(kBase);
    for (const char* value : {"1", "2"}) {
        ASSERT_EQ(Set(first.get(), "v", value), 0);
        EXPECT_EQ(Get(second.get(), "v"), value);
    }
}

TEST_F(Registry, ListsSubkeysAndValues) {
    const Key key(kBase), one(kBase + "\\One"), two(kBase + "\\Two");
    ASSERT_EQ(SetText(key.get(), "v", "1"), 0);
    char name[64];
    for (DWORD i = 0; const char* expected : {"One", "Two"}) {
        DWORD length = sizeof name;
        ASSERT_EQ(RegEnumKeyExA(key.get(), i++, name, &length, nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);
        EXPECT_EQ(std::string(name, length), expected);
    }
    DWORD length = sizeof name;
    EXPECT_EQ(RegEnumKeyExA(key.get(), 2, name, &length, nullptr, nullptr, nullptr, nullptr), ERROR_NO_MORE_ITEMS);
    length = 3;
    EXPECT_EQ(RegEnumKeyExA(key.get(), 0, name, &length, nullptr, nullptr, nullptr, nullptr), ERROR_MORE_DATA);

    BYTE data[8];
    DWORD size = sizeof data;
    length = sizeof name;
    ASSERT_EQ(RegEnumValueA(key.get(), 0, name, &length, nullptr, nullptr, data, &size), ERROR_SUCCESS);
    EXPECT_EQ(std::string(name, length), "v");
    EXPECT_EQ(size, 2U);
    EXPECT_EQ(RegEnumValueA(key.get(), 1, name, &length, nullptr, nullptr, nullptr, nullptr), ERROR_NO_MORE_ITEMS);
}

TEST_F(Registry, LeavesTheLastErrorAlone) {
    SetLastError(99);
    HKEY key;
    RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\WncomTests\\No", 0, KEY_READ, &key);
    EXPECT_EQ(GetLastError(), 99U);
}

}  // namespace
