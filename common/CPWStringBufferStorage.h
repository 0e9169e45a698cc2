// The storage of CPWStringBuffer: where it comes from, where the text lies in it, and who owns it.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "common/CPWStringBuffer.h"
#include "wncom/Logging.h"

namespace wncom {

template <class Allocator>
CPWStringBuffer<Allocator>::CPWStringBuffer(std::size_t size) noexcept {
    Allocate(size <= kMaxCapacity ? size + 2 : size, false);
}

template <class Allocator>
CPWStringBuffer<Allocator>::CPWStringBuffer(const WCHAR* text, DWORD tag, bool centre) noexcept {
    Assign(text, centre);
    mTag = tag;
}

template <class Allocator>
void CPWStringBuffer<Allocator>::TakeOver(CPWStringBuffer& other) noexcept {
    mCapacity = std::exchange(other.mCapacity, 0);
    mBuffer = std::exchange(other.mBuffer, nullptr);
    mOffset = std::exchange(other.mOffset, 0);
    mMultiByte = std::exchange(other.mMultiByte, nullptr);
    mTag = other.mTag;
}

template <class Allocator>
typename CPWStringBuffer<Allocator>::Former CPWStringBuffer<Allocator>::TakeOut() noexcept {
    mCapacity = 0;
    mOffset = 0;
    return {OwnedStorage(std::exchange(mBuffer, nullptr)), MallocText<BYTE>(std::exchange(mMultiByte, nullptr))};
}

template <class Allocator>
void CPWStringBuffer<Allocator>::Free() noexcept {
    TakeOut();
}

template <class Allocator>
WCHAR* CPWStringBuffer<Allocator>::Allocate(std::size_t refsize, bool grow) noexcept {
    Free();
    std::size_t capacity = refsize;
    if (grow && refsize < 256) {
        capacity = std::max<std::size_t>(2 * refsize, 32);
    } else if (grow && refsize <= kMaxCapacity) {
        capacity = refsize + static_cast<std::size_t>(std::uint64_t{512} * refsize / (refsize + 256));
    }
    if (capacity <= kMaxCapacity) mBuffer = Allocator::Allocate(capacity);
    if (mBuffer) {
        // Filled, so that the text ends inside the storage wherever it is made to start.
        std::fill_n(mBuffer, std::max<std::size_t>(capacity, 1), WCHAR{});
        mCapacity = static_cast<DWORD>(capacity);
        SetOffset((capacity - refsize) / 2);
    }
    WNCOM_LOG(6, "CPWStringBuffer::Allocate - refsize=%d | mBuffer=%X | mCapacity=%d | mOffset=%d",
              static_cast<DWORD>(refsize), static_cast<const void*>(mBuffer), mCapacity, mOffset);
    return mBuffer;
}

template <class Allocator>
std::size_t CPWStringBuffer<Allocator>::Length() const noexcept {
    return mBuffer ? wcslen(Text()) : 0;
}

template <class Allocator>
std::size_t CPWStringBuffer<Allocator>::Capacity() const noexcept {
    // Unknown for a text that a component returned.
    if (mCapacity == 0 && mBuffer) mCapacity = static_cast<DWORD>(wcslen(mBuffer));
    return mCapacity;
}

template <class Allocator>
std::size_t CPWStringBuffer<Allocator>::Offset() const noexcept {
    const bool recorded = mBuffer && mBuffer[0] == 0 && Capacity() >= 3;
    mOffset = recorded ? static_cast<DWORD>(mBuffer[1]) : 0;
    return mOffset;
}

// The offset nearest to the wanted one at which a text of this storage can start.
template <class Allocator>
std::size_t CPWStringBuffer<Allocator>::NearestOffset(std::size_t offset) const noexcept {
    const std::size_t capacity = Capacity();
    if (capacity < 3) return 0;
    offset = std::min({offset, std::size_t{0xFFFF}, capacity - 1});
    return offset == 1 ? 0 : offset;
}

template <class Allocator>
DWORD CPWStringBuffer<Allocator>::SetOffset(std::size_t offset) noexcept {
    mOffset = static_cast<DWORD>(NearestOffset(offset));
    if (mOffset > 1) {
        mBuffer[0] = 0;
        mBuffer[1] = static_cast<WCHAR>(mOffset);
    } else if (mBuffer && mBuffer[0] == 0 && Capacity() > 1) {
        mBuffer[1] = 0;
    }
    WNCOM_LOG(6, "CPWStringBuffer::SetOffset - mOffset=%d", mOffset);
    return 0;
}

// Makes a text that is in the storage already, or anywhere else, the buffer's text at that offset. The text and its
// terminator must fit behind it.
template <class Allocator>
void CPWStringBuffer<Allocator>::Place(const WCHAR* text, std::size_t length, std::size_t offset) noexcept {
    WCHAR* place = mBuffer + NearestOffset(offset);
    std::memmove(place, text, length * sizeof(WCHAR));
    place[length] = 0;
    // Last, because the offset's record may lie where the text came from.
    SetOffset(offset);
}

template <class Allocator>
WCHAR* CPWStringBuffer<Allocator>::GetBuffer() noexcept {
    if (mBuffer && Offset() != 0) Place(Text(), Length(), 0);
    return mBuffer;
}

template <class Allocator>
WCHAR* CPWStringBuffer<Allocator>::Detach(bool keepOffset) noexcept {
    if (!keepOffset) GetBuffer();
    return TakeOut().storage.release();
}

template <class Allocator>
UINT_PTR CPWStringBuffer<Allocator>::GetProperty(unsigned id) {
    switch (id) {
        case 1:
            return Length();
        case 2:
            return Capacity();
        case 3:
            return reinterpret_cast<UINT_PTR>(mBuffer);
        case 4:
        case 5:
            return reinterpret_cast<UINT_PTR>(Text());
        case 6:
            return mTag;
        case 7:
            return Offset();
        case 8:
            return reinterpret_cast<UINT_PTR>(Detach(true));
        default:
            throw -1;
    }
}

template <class Allocator>
void CPWStringBuffer<Allocator>::SetProperty(unsigned id, UINT_PTR value) {
    switch (id) {
        case 6:
            mTag = static_cast<DWORD>(value);
            break;
        case 7:
            SetOffset(value);
            break;
        default:
            throw -1;
    }
}

}  // namespace wncom
