#include "common/CPWStringBuffer.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>

#include "common/CPWStringBufferEditing.h"
#include "common/CPWStringBufferMultiByte.h"
#include "common/CPWStringBufferStorage.h"

namespace wncom {
namespace {

// A property knows itself by its distance from the marker.
template <class Allocator>
constexpr bool HasStatedLayout() {
    using Members = CPWStringBufferMembers<Allocator>;
    static_assert(std::is_standard_layout_v<CPWStringBuffer<Allocator>>);
    static_assert(offsetof(Members, mMarker) == 0);
    static_assert(offsetof(Members, mLengthProperty) == 1);
    static_assert(offsetof(Members, mCapacityProperty) == 2);
    static_assert(offsetof(Members, mStorageProperty) == 3);
    static_assert(offsetof(Members, mTextProperty) == 4);
    static_assert(offsetof(Members, mConstTextProperty) == 5);
    static_assert(offsetof(Members, mTagProperty) == 6);
    static_assert(offsetof(Members, mOffsetProperty) == 7);
    static_assert(offsetof(Members, mDetachedProperty) == 8);
    static_assert(offsetof(Members, mCapacity) == 12);
    static_assert(offsetof(Members, mCapacity) < offsetof(Members, mBuffer));
    static_assert(offsetof(Members, mBuffer) < offsetof(Members, mOffset));
    static_assert(offsetof(Members, mOffset) < offsetof(Members, mMultiByte));
    static_assert(offsetof(Members, mMultiByte) < offsetof(Members, mTag));
    return true;
}

static_assert(HasStatedLayout<CPBstrAllocator>() && HasStatedLayout<CPHeapAllocator>());

}  // namespace

WCHAR* CPBstrAllocator::Allocate(std::size_t capacity) noexcept {
    return SysAllocStringLen(nullptr, static_cast<UINT>(capacity));
}

void CPBstrAllocator::Release(WCHAR* storage) noexcept { SysFreeString(storage); }

WCHAR* CPHeapAllocator::Allocate(std::size_t capacity) noexcept {
    return static_cast<WCHAR*>(std::malloc(std::max<std::size_t>(capacity, 1) * sizeof(WCHAR)));
}

void CPHeapAllocator::Release(WCHAR* storage) noexcept { std::free(storage); }

unsigned StringBufferPropertyId(const void* member) {
    constexpr unsigned kLast = 8;
    const BYTE* byte = static_cast<const BYTE*>(member);
    for (unsigned id = 1; id <= kLast; ++id) {
        if (*(byte - id) == CPWStringBufferMembers<CPHeapAllocator>::kMarker) return id;
    }
    throw -1;
}

template class CPWStringBuffer<CPBstrAllocator>;
template class CPWStringBuffer<CPHeapAllocator>;

}  // namespace wncom
