// The editing of CPWStringBuffer's text: each operation moves as little as it can.
#pragma once

#include <algorithm>
#include <cstring>
#include <functional>

#include "common/CPWStringBuffer.h"

namespace wncom {

template <class Allocator>
CPWStringBuffer<Allocator>& CPWStringBuffer<Allocator>::Assign(const WCHAR* text, bool centre) noexcept {
    if (!text) {
        Erase();
        return *this;
    }
    const std::size_t length = wcslen(text);
    Former former;
    if (!mBuffer || Capacity() <= length) {
        former = TakeOut();
        if (!Allocate(length, true)) return *this;
    }
    Place(text, length, centre ? (Capacity() - length) / 2 : 0);
    return *this;
}

template <class Allocator>
CPWStringBuffer<Allocator>& CPWStringBuffer<Allocator>::Append(const WCHAR* text) noexcept {
    if (!text) return *this;
    if (!mBuffer) return Assign(text);
    const std::size_t count = wcslen(text);
    const std::size_t length = Length();
    const WCHAR* own = Text();
    const bool inside = std::less_equal<>{}(own, text) && std::less_equal<>{}(text, own + length);
    const Former former = MakeRoom(length + count);
    if (!mBuffer) return *this;
    // A text of the buffer's own may have moved with it.
    if (inside) text = Text() + (text - own);
    WCHAR* end = Text() + length;
    std::memmove(end, text, count * sizeof(WCHAR));
    end[count] = 0;
    return *this;
}

// Makes the text able to grow to that length behind its end; what it leaves behind stays alive with the result.
template <class Allocator>
typename CPWStringBuffer<Allocator>::Former CPWStringBuffer<Allocator>::MakeRoom(std::size_t newLength) noexcept {
    const std::size_t capacity = Capacity();
    const std::size_t offset = Offset();
    const std::size_t length = Length();
    if (newLength < capacity) {
        if (offset != 0 && newLength >= capacity - offset) Place(Text(), length, (capacity - newLength) / 2);
        return {};
    }
    const WCHAR* text = Text();
    Former former = TakeOut();
    if (Allocate(newLength, true)) Place(text, length, mOffset);
    return former;
}

template <class Allocator>
bool CPWStringBuffer<Allocator>::Insert(const WCHAR* text, std::size_t position, std::size_t count) noexcept {
    if (!text) return false;
    const std::size_t available = wcslen(text);
    if (available == 0) return false;
    if (count == 0 || count > available) count = available;

    const bool inside =
        mBuffer && std::less_equal<>{}(mBuffer, text) && std::less_equal<>{}(text, mBuffer + Capacity());
    if (!inside) return InsertPart(text, position, count);
    // The gap for the new text may open in the middle of its source.
    const OwnedStorage copy(Allocator::Allocate(available + 1));
    if (!copy) return false;
    std::memcpy(copy.get(), text, (available + 1) * sizeof(WCHAR));
    return InsertPart(copy.get(), position, count);
}

template <class Allocator>
bool CPWStringBuffer<Allocator>::InsertPart(const WCHAR* text, std::size_t position, std::size_t count) noexcept {
    if (!mBuffer) {
        if (!Allocate(count, true)) return false;
        Place(text, count, mOffset);
        return true;
    }
    const std::size_t length = Length();
    const std::size_t capacity = Capacity();
    if (length == 0 && capacity > count) {
        Place(text, count, (capacity - count) / 2);
        return true;
    }
    if (position >= length) return InsertAtEnd(text, length, count);
    if (capacity <= length + count + 2) return InsertReallocating(text, position, count);
    InsertInPlace(text, position, count);
    return true;
}

template <class Allocator>
bool CPWStringBuffer<Allocator>::InsertAtEnd(const WCHAR* text, std::size_t length, std::size_t count) noexcept {
    if (Capacity() - Offset() > length + count) {
        std::memcpy(Text() + length, text, count * sizeof(WCHAR));
    } else {
        // All of it, so that a part that is followed by the next one finds its room made.
        Append(text);
        if (!mBuffer) return false;
    }
    Text()[length + count] = 0;
    return true;
}

template <class Allocator>
bool CPWStringBuffer<Allocator>::InsertReallocating(const WCHAR* text, std::size_t position,
                                                    std::size_t count) noexcept {
    const WCHAR* old = Text();
    const std::size_t length = Length();
    const Former former = TakeOut();
    if (!Allocate(length + count, true)) return false;
    WCHAR* place = mBuffer + mOffset;
    std::memcpy(place, old, position * sizeof(WCHAR));
    std::memcpy(place + position, text, count * sizeof(WCHAR));
    std::memcpy(place + position + count, old + position, (length - position + 1) * sizeof(WCHAR));
    return true;
}

template <class Allocator>
void CPWStringBuffer<Allocator>::InsertInPlace(const WCHAR* text, std::size_t position, std::size_t count) noexcept {
    const std::size_t offset = Offset();
    const std::size_t length = Length();
    WCHAR* start = Text();
    const std::size_t rest = length - position + 1;  // with the terminator
    // A front that moves must leave the offset one that can be recorded.
    const bool frontHasRoom = offset != 0 && offset - 1 > count;
    const bool backHasRoom = Capacity() - offset > length + count;

    std::size_t newOffset = offset;
    if (frontHasRoom && (!backHasRoom || position <= length / 2)) {
        newOffset = offset - count;
        std::memmove(mBuffer + newOffset, start, position * sizeof(WCHAR));
    } else if (backHasRoom) {
        std::memmove(start + position + count, start + position, rest * sizeof(WCHAR));
    } else {
        newOffset = 0;
        std::memmove(mBuffer, start, position * sizeof(WCHAR));
        std::memmove(mBuffer + position + count, start + position, rest * sizeof(WCHAR));
    }
    std::memcpy(mBuffer + newOffset + position, text, count * sizeof(WCHAR));
    if (newOffset != offset) SetOffset(newOffset);
}

template <class Allocator>
bool CPWStringBuffer<Allocator>::Erase(std::size_t first, std::size_t last) noexcept {
    const std::size_t length = Length();
    if (first >= length || last < first) return false;
    WCHAR* text = Text();
    const std::size_t end = last < length ? last + 1 : length;
    const std::size_t rest = length - end;
    const std::size_t count = end - first;
    const std::size_t offset = Offset() + count;
    const bool recordable = NearestOffset(offset) == offset;

    if (rest == 0 && first == 0) {
        Place(text, 0, Capacity() / 3);
    } else if (rest == 0) {
        text[first] = 0;
    } else if (first == 0 && !recordable) {
        Place(text + end, rest, 0);
    } else if (first == 0 || (rest > first && (mOffset != 0 || count > 2) && recordable)) {
        std::memmove(text + count, text, first * sizeof(WCHAR));
        SetOffset(offset);
    } else {
        std::memmove(text + first, text + end, (rest + 1) * sizeof(WCHAR));
    }
    return true;
}

}  // namespace wncom
