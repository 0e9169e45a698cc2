// Long random histories of a buffer against a plain string.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "common/CPWStringBufferEditing.h"
#include "common/CPWStringBufferMultiByte.h"
#include "common/CPWStringBufferStorage.h"
#include "tests/common/string_buffer_kinds.h"

namespace wncom::test {
namespace {

template <class Allocator>
class History {
public:
    explicit History(unsigned seed) : m_random(seed) {}

    void Run(int steps) {
        for (int step = 0; step < steps; ++step) {
            SCOPED_TRACE("step " + std::to_string(step));
            if (m_model.size() > 200000) m_buffer.Assign((m_model = Letters(5)).c_str());
            FailingAllocator::failed = false;
            if (Chance(40)) FailingAllocator::allocationsToFailure = 1;
            const WideText before = m_model;
            Step();
            FailingAllocator::allocationsToFailure = 0;
            if (FailingAllocator::failed) m_model = m_buffer.Text() ? before : WideText();
            Check();
            if (testing::Test::HasFailure()) return;
        }
    }

private:
    std::size_t Number(std::size_t below) {
        return std::uniform_int_distribution<std::size_t>(0, below - 1)(m_random);
    }
    bool Chance(std::size_t oneIn) { return Number(oneIn) == 0; }

    std::size_t Size() {
        if (Chance(200)) return Number(70000);
        return Chance(10) ? Number(600) : Number(12);
    }
    template <class Char>
    std::basic_string<Char> NewText() {
        std::basic_string<Char> text(Size(), Char{'x'});
        for (Char& character : text) character = static_cast<Char>(Number(255) + 1);
        return text;
    }
    static WideText Widened(const std::string& text) {
        WideText wide;
        for (const char character : text) wide.push_back(static_cast<unsigned char>(character));
        return wide;
    }

    void Step() {
        switch (Number(11)) {
            case 0:
                return Assign();
            case 1:
                return AssignNarrow();
            case 2:
            case 3:
                return Append();
            case 4:
                return AppendNarrow();
            case 5:
            case 6:
                return Insert();
            case 7:
            case 8:
                return Erase();
            case 9:
                return FromItself();
            default:
                return ChangeStorage();
        }
    }

    void Assign() {
        m_model = NewText<WCHAR>();
        m_buffer.Assign(m_model.c_str(), Chance(2));
    }
    void AssignNarrow() {
        const auto text = NewText<char>();
        m_model = Widened(text);
        m_buffer.Assign(text.c_str());
    }
    void Append() {
        const auto text = NewText<WCHAR>();
        m_model += text;
        m_buffer.Append(text.c_str());
    }
    void AppendNarrow() {
        const auto text = NewText<char>();
        m_model += Widened(text);
        m_buffer.Append(text.c_str());
    }
    void InsertText(const WCHAR* text, std::size_t length) {
        const std::size_t position = Number(m_model.size() + 3);
        const std::size_t count = Number(length + 2);
        const std::size_t inserted = count == 0 ? length : std::min(count, length);
        const WideText part(text, inserted);
        const bool done = m_buffer.Insert(text, position, count);
        EXPECT_EQ(done, inserted > 0 && !FailingAllocator::failed);
        m_model.insert(std::min(position, m_model.size()), part);
    }
    void Insert() {
        const auto text = NewText<WCHAR>();
        InsertText(text.c_str(), text.size());
    }
    void Erase() {
        const std::size_t first = Chance(3) ? 0 : Number(m_model.size() + 2);
        const std::size_t last = Chance(4) ? m_buffer.kToEnd : Number(m_model.size() + 2);
        const bool done = m_buffer.Erase(first, last);
        const bool expected = first < m_model.size() && last >= first;
        EXPECT_EQ(done, expected);
        if (expected) m_model.erase(first, last - first + (last == m_buffer.kToEnd ? 0 : 1));
    }
    void FromItself() {
        if (m_model.empty()) return;
        const std::size_t start = Number(m_model.size() + 1);
        const WideText part = m_model.substr(start);
        switch (Number(5)) {
            case 0:
                m_buffer.Assign(m_buffer.Text() + start, Chance(2));
                m_model = part;
                break;
            case 1:
                m_buffer.Append(m_buffer.Text() + start);
                m_model += part;
                break;
            case 2:
                m_buffer.Append(m_buffer.GetMultiByte());
                m_model += m_model;
                break;
            case 3:
                m_buffer.Assign(m_buffer.GetMultiByte());
                break;
            default:
                InsertText(m_buffer.Text() + start, part.size());
        }
    }
    void ChangeStorage() {
        switch (Number(5)) {
            case 0:
                m_buffer.GetBuffer();
                EXPECT_EQ(m_buffer.Offset(), 0u);
                break;
            case 1:
                m_buffer.Free();
                m_model.clear();
                break;
            case 2:
                m_buffer.Allocate(Size(), Chance(2));
                m_model.clear();
                break;
            case 3: {
                CPWStringBuffer<Allocator> other(std::move(m_buffer));
                EXPECT_EQ(m_buffer.Text(), nullptr);
                m_buffer = std::move(other);
                break;
            }
            default:
                if constexpr (std::is_same_v<Allocator, CPBstrAllocator>) {
                    m_model = NewText<WCHAR>();
                    *m_buffer.put() = SysAllocString(m_model.c_str());
                }
        }
    }

    void Check() {
        ASSERT_EQ(m_buffer.Length(), m_model.size());
        ASSERT_TRUE(TextOf(m_buffer) == m_model);
        const std::size_t offset = m_buffer.Offset();
        EXPECT_NE(offset, 1u);
        EXPECT_LE(offset, 65535u);
        // A text that was handed over fills its storage.
        if (m_buffer.Text()) {
            EXPECT_LE(offset + m_buffer.Length(), m_buffer.Capacity());
        }
        const char* narrow = m_buffer.GetMultiByte();
        EXPECT_TRUE(narrow ? Widened(narrow) == m_model : m_model.empty());
    }

    std::mt19937 m_random;
    CPWStringBuffer<Allocator> m_buffer;
    WideText m_model;
};

template <class Allocator>
class StringBufferModel : public testing::Test {};

using Kinds = testing::Types<CPBstrAllocator, CPHeapAllocator, FailingAllocator>;
TYPED_TEST_SUITE(StringBufferModel, Kinds);

TYPED_TEST(StringBufferModel, HoldsWhatAPlainStringWouldHold) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        History<TypeParam>(seed).Run(400);
        if (this->HasFailure()) return;
    }
}

}  // namespace
}  // namespace wncom::test
