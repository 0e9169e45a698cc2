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

WideText Widened(const std::string& text) {
    WideText wide;
    for (const char character : text) wide.push_back(static_cast<unsigned char>(character));
    return wide;
}

template <class Allocator>
class History {
public:
    explicit History(unsigned seed) : m_random(seed) {}

    void Run(int steps) {
        for (int step = 0; step < steps && !testing::Test::HasFailure(); ++step) {
            SCOPED_TRACE("step " + std::to_string(step));
            if (m_model.size() > 200000) m_buffer.Assign((m_model = Letters(5)).c_str());
            FailingAllocator::failed = false;
            if (Chance(40)) FailingAllocator::allocationsToFailure = 1;
            const WideText before = m_model;
            Step(Number(14));
            FailingAllocator::allocationsToFailure = 0;
            if (FailingAllocator::failed) m_model = m_buffer.Text() ? before : WideText();
            Check();
        }
    }

private:
    std::size_t Number(std::size_t below) {
        return std::uniform_int_distribution<std::size_t>(0, below - 1)(m_random);
    }
    bool Chance(std::size_t oneIn) { return Number(oneIn) == 0; }
    std::size_t Size() { return Chance(200) ? Number(70000) : Chance(10) ? Number(600) : Number(12); }
    template <class Char>
    std::basic_string<Char> NewText() {
        std::basic_string<Char> text(Size(), Char{'x'});
        for (Char& character : text) character = static_cast<Char>(Number(255) + 1);
        return text;
    }

    void Step(std::size_t kind) {
        const auto wide = NewText<WCHAR>();
        const auto narrow = NewText<char>();
        const std::size_t start = Number(m_model.size() + 1);
        const WCHAR* own = m_buffer.Text() ? m_buffer.Text() + start : nullptr;
        switch (kind) {
            case 0:
                m_buffer.Assign((m_model = wide).c_str(), Chance(2));
                break;
            case 1:
                m_model = Widened(narrow);
                m_buffer.Assign(narrow.c_str());
                break;
            case 2:
                m_model += wide;
                m_buffer.Append(wide.c_str());
                break;
            case 3:
                m_model += Widened(narrow);
                m_buffer.Append(narrow.c_str());
                break;
            case 4:
            case 5:
                Insert(wide.c_str(), wide.size());
                break;
            case 6:
            case 7:
                Erase();
                break;
            // A text of its own:
            case 8:
                if (own) m_buffer.Assign(own, Chance(2)), m_model = m_model.substr(start);
                break;
            case 9:
                if (own) m_buffer.Append(own), m_model += m_model.substr(start);
                break;
            case 10:
                if (own) Insert(own, m_model.size() - start);
                break;
            case 11:
                m_buffer.Append(m_buffer.GetMultiByte()), m_model += m_model;
                break;
            case 12:
                m_buffer.Assign(m_buffer.GetMultiByte());
                break;
            default:
                ChangeStorage(wide);
        }
    }
    void Insert(const WCHAR* text, std::size_t length) {
        const std::size_t position = Number(m_model.size() + 3);
        const std::size_t count = Number(length + 2);
        const std::size_t inserted = count == 0 ? length : std::min(count, length);
        const WideText part(text, inserted);
        const bool done = m_buffer.Insert(text, position, count);
        EXPECT_EQ(done, inserted > 0 && !FailingAllocator::failed);
        m_model.insert(std::min(position, m_model.size()), part);
    }
    void Erase() {
        const std::size_t first = Chance(3) ? 0 : Number(m_model.size() + 2);
        const std::size_t last = Chance(4) ? m_buffer.kToEnd : Number(m_model.size() + 2);
        const bool expected = first < m_model.size() && last >= first;
        EXPECT_EQ(m_buffer.Erase(first, last), expected);
        if (expected) m_model.erase(first, last - first + (last == m_buffer.kToEnd ? 0 : 1));
    }
    void ChangeStorage(const WideText& text) {
        switch (Number(4)) {
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
            default:
                if constexpr (std::is_same_v<Allocator, CPBstrAllocator>) {
                    *m_buffer.put() = SysAllocString((m_model = text).c_str());
                }
        }
    }

    void Check() {
        ASSERT_EQ(m_buffer.Length(), m_model.size());
        ASSERT_TRUE(TextOf(m_buffer) == m_model);
        EXPECT_NE(m_buffer.Offset(), 1u);
        EXPECT_LE(m_buffer.Offset(), 65535u);
        // A text that was handed over fills its storage.
        if (m_buffer.Text()) {
            EXPECT_LE(m_buffer.Offset() + m_buffer.Length(), m_buffer.Capacity());
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
using Kinds = testing::Types<CPBstrAllocator, FailingAllocator>;
TYPED_TEST_SUITE(StringBufferModel, Kinds);

TYPED_TEST(StringBufferModel, HoldsWhatAPlainStringWouldHold) {
    for (unsigned seed = 1; seed <= 20 && !this->HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        History<TypeParam>(seed).Run(400);
    }
}

}  // namespace
}  // namespace wncom::test
