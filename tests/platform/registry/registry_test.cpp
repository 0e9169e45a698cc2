#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "tests/platform/OnWine.h"

namespace {

constexpr char kBase[] = "SOFTWARE\\WncomTests\\Registry";

// Owns an open key.
class Key {
public:
    explicit Key(LPCSTR path, REGSAM access = KEY_ALL_ACCESS) {
        EXPECT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, path, 0, nullptr, 0, access, nullptr, &m_key, nullptr), 0)
            << path;
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;
    ~Key() { RegCloseKey(m_key); }
    HKEY get() const { return m_key; }

private:
    HKEY m_key = nullptr;
};

class Registry : public testing::Test {
protected:
    void TearDown() override { RegDeleteTreeA(HKEY_LOCAL_MACHINE, "SOFTWARE\\WncomTests"); }
};

LSTATUS Set(HKEY key, LPCSTR name, std::string_view bytes, DWORD type = REG_SZ) {
    return RegSetValueExA(key, name, 0, type, reinterpret_cast<const BYTE*>(bytes.data()),
                          static_cast<DWORD>(bytes.size()));
}

std::string Get(HKEY key, LPCSTR name, DWORD* type = nullptr) {
    BYTE data[256];
    DWORD size = sizeof data;
    EXPECT_EQ(RegQueryValueExA(key, name, nullptr, type, data, &size), ERROR_SUCCESS) << (name ? name : "(default)");
    return std::string(reinterpret_cast<char*>(data), size);
}

using namespace std::string_view_literals;

TEST_F(Registry, FindsKeysAndValuesInEitherCase) {
    const Key key(kBase);
    ASSERT_EQ(Set(key.get(), "Name", "value\0"sv), 0);
    HKEY again;
    ASSERT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "software\\WNCOMTESTS\\registry", 0, KEY_READ, &again), 0);
    EXPECT_EQ(Get(again, "nAME"), "value\0"sv);
    RegCloseKey(again);
}

TEST_F(Registry, FindsNamesBeyondAsciiInEitherCase) {
    const Key key((std::string(kBase) + "\\\xC9t\xE9").c_str());
    ASSERT_EQ(Set(key.get(), "\xDC", "\xE4\x80\0"sv), 0);
    HKEY again;
    ASSERT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, (std::string(kBase) + "\\\xE9T\xC9").c_str(), 0, KEY_READ, &again),
              0);
    EXPECT_EQ(Get(again, "\xFC"), "\xE4\x80\0"sv);
    RegCloseKey(again);
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
    ASSERT_EQ(Set(key.get(), nullptr, "one\0"sv), 0);
    EXPECT_EQ(Get(key.get(), ""), "one\0"sv);
    ASSERT_EQ(RegDeleteValueA(key.get(), ""), 0);
    EXPECT_EQ(RegQueryValueExA(key.get(), nullptr, nullptr, nullptr, nullptr, nullptr), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegDeleteValueA(key.get(), ""), ERROR_FILE_NOT_FOUND);
}

TEST_F(Registry, TellsTheSizeThatABufferNeeds) {
    const Key key(kBase);
    ASSERT_EQ(Set(key.get(), "v", "12345\0"sv), 0);
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

TEST_F(Registry, RefusesWhatAHandleWasNotOpenedFor) {
    const Key writer(kBase, KEY_WRITE);
    ASSERT_EQ(Set(writer.get(), "v", "1\0"sv), 0);
    const Key reader(kBase, KEY_READ);
    EXPECT_EQ(Set(reader.get(), "v", "2\0"sv), ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegDeleteValueA(reader.get(), "v"), ERROR_ACCESS_DENIED);
    DWORD size = 0;
    EXPECT_EQ(RegQueryValueExA(writer.get(), "v", nullptr, nullptr, nullptr, &size), ERROR_ACCESS_DENIED);
    EXPECT_EQ(Get(reader.get(), "v"), "1\0"sv);
}

TEST_F(Registry, TellsNewKeysFromExistingOnes) {
    HKEY key;
    DWORD disposition = 0;
    ASSERT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, kBase, 0, nullptr, 0, KEY_READ, nullptr, &key, &disposition), 0);
    EXPECT_EQ(disposition, DWORD{REG_CREATED_NEW_KEY});
    RegCloseKey(key);
    ASSERT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, kBase, 0, nullptr, 0, KEY_READ, nullptr, &key, &disposition), 0);
    EXPECT_EQ(disposition, DWORD{REG_OPENED_EXISTING_KEY});
    RegCloseKey(key);
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
    ASSERT_EQ(Set(key.get(), nullptr, "seen\0"sv), 0);
    HKEY root;
    ASSERT_EQ(RegOpenKeyExA(HKEY_CLASSES_ROOT, "WncomTests.Class", 0, KEY_READ, &root), 0);
    EXPECT_EQ(Get(root, nullptr), "seen\0"sv);
    RegCloseKey(root);
    EXPECT_EQ(RegDeleteKeyA(HKEY_CLASSES_ROOT, "WncomTests.Class"), ERROR_SUCCESS);
}

TEST_F(Registry, DeletesOneKeyOnlyWithoutSubkeysAndTreesWhole) {
    const Key leaf((std::string(kBase) + "\\Sub\\Leaf").c_str());
    EXPECT_EQ(RegDeleteKeyA(HKEY_LOCAL_MACHINE, kBase), ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegDeleteTreeA(HKEY_LOCAL_MACHINE, kBase), ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteTreeA(HKEY_LOCAL_MACHINE, kBase), ERROR_FILE_NOT_FOUND);
}

TEST_F(Registry, KeepsTheKeyWhoseContentsAreDeleted) {
    const Key key(kBase);
    const Key sub((std::string(kBase) + "\\Sub").c_str());
    ASSERT_EQ(Set(key.get(), "v", "1\0"sv), 0);
    ASSERT_EQ(RegDeleteTreeA(key.get(), nullptr), ERROR_SUCCESS);
    EXPECT_EQ(RegQueryValueExA(key.get(), "v", nullptr, nullptr, nullptr, nullptr), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegQueryValueExA(sub.get(), "v", nullptr, nullptr, nullptr, nullptr), ERROR_KEY_DELETED);
}

TEST_F(Registry, InvalidatesHandlesOfADeletedKey) {
    const Key key(kBase);
    ASSERT_EQ(RegDeleteKeyA(HKEY_LOCAL_MACHINE, kBase), ERROR_SUCCESS);
    DWORD size = 0;
    EXPECT_EQ(RegQueryValueExA(key.get(), "v", nullptr, nullptr, nullptr, &size), ERROR_KEY_DELETED);
    EXPECT_EQ(Set(key.get(), "v", "1\0"sv), ERROR_KEY_DELETED);
}

TEST_F(Registry, SeesThroughAnOpenHandleWhatAnotherWrites) {
    const Key first(kBase), second(kBase);
    ASSERT_EQ(Set(first.get(), "v", "1\0"sv), 0);
    EXPECT_EQ(Get(second.get(), "v"), "1\0"sv);
    ASSERT_EQ(Set(first.get(), "v", "2\0"sv), 0);
    EXPECT_EQ(Get(second.get(), "v"), "2\0"sv);
}

TEST_F(Registry, ListsSubkeysAndValues) {
    const Key key(kBase);
    const Key one((std::string(kBase) + "\\One").c_str()), two((std::string(kBase) + "\\Two").c_str());
    ASSERT_EQ(Set(key.get(), "v", "1\0"sv), 0);
    std::vector<std::string> names;
    char name[64];
    DWORD length = sizeof name;
    for (DWORD i = 0; RegEnumKeyExA(key.get(), i, name, &length, nullptr, nullptr, nullptr, nullptr) == 0; ++i) {
        names.emplace_back(name, length);
        length = sizeof name;
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"One", "Two"}));
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
