// The wide string buffer: UTF-16 text that grows at both ends and gives up its front without moving.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "common/MallocText.h"

namespace wncom {

// Where a buffer's storage comes from. Allocate gives room for a number of characters, at least one, not filled, or
// null when memory runs out; Release takes null too.
struct CPBstrAllocator {
    // A BSTR whose recorded length is the capacity.
    static WCHAR* Allocate(std::size_t capacity) noexcept;
    static void Release(WCHAR* storage) noexcept;
};
struct CPHeapAllocator {
    // From malloc.
    static WCHAR* Allocate(std::size_t capacity) noexcept;
    static void Release(WCHAR* storage) noexcept;
};

template <class Allocator>
class CPWStringBuffer;

// The id of the property member at that address: its distance in bytes from the marker that starts its object.
// Throws the int -1 when no marker stands within reach.
unsigned StringBufferPropertyId(const void* member);

// What a buffer holds, in an order that its properties rely on.
template <class Allocator>
struct CPWStringBufferMembers {
    // Reads and sets a value of the object around it as if it were a field. Lives nowhere but in its object.
    template <class Value>
    class Property {
    public:
        Property() noexcept = default;
        Property(const Property&) = delete;
        Property& operator=(const Property&) = delete;

        // Throws the int -1 when the property cannot be read, or cannot be set.
        operator Value() {
            const unsigned id = StringBufferPropertyId(this);
            if constexpr (std::is_pointer_v<Value>) {
                return reinterpret_cast<Value>(Owner(id).GetProperty(id));
            } else {
                return static_cast<Value>(Owner(id).GetProperty(id));
            }
        }
        Property& operator=(Value value) {
            const unsigned id = StringBufferPropertyId(this);
            if constexpr (std::is_pointer_v<Value>) {
                Owner(id).SetProperty(id, reinterpret_cast<UINT_PTR>(value));
            } else {
                Owner(id).SetProperty(id, value);
            }
            return *this;
        }

    private:
        CPWStringBuffer<Allocator>& Owner(unsigned id) noexcept {
            BYTE* start = reinterpret_cast<BYTE*>(this) - id;
            return static_cast<CPWStringBuffer<Allocator>&>(
                *std::launder(reinterpret_cast<CPWStringBufferMembers*>(start)));
        }

        BYTE mZero = 0;  // never the marker's value
    };

    static constexpr BYTE kMarker = 0xAA;

    BYTE mMarker = kMarker;
    Property<DWORD> mLengthProperty;            // 1: the text's length in characters
    Property<DWORD> mCapacityProperty;          // 2: the storage's capacity in characters
    Property<WCHAR*> mStorageProperty;          // 3: the storage itself
    Property<WCHAR*> mTextProperty;             // 4: the text's first character, or null
    Property<const WCHAR*> mConstTextProperty;  // 5: the same
    Property<DWORD> mTagProperty;               // 6: the tag; can be set
    Property<DWORD> mOffsetProperty;            // 7: the text's offset in the storage; can be set
    Property<WCHAR*> mDetachedProperty;         // 8: the storage, handed over as by Detach(true)
    mutable DWORD mCapacity = 0;                // in characters; 0 until it is known
    WCHAR* mBuffer = nullptr;                   // the storage; owned
    mutable DWORD mOffset = 0;                  // as last read or set, in characters
    BYTE* mMultiByte = nullptr;                 // the last multibyte form behind its usable size; owned
    DWORD mTag = 0;
};

// A text of UTF-16 characters in a storage with free room before and after it. An offset of 2 or more is recorded in
// the storage itself: its first character is 0 and its second the offset. So no offset is 1 or above 65535; texts
// are moved where one would be needed.
//
// Texts given to an operation are terminated, are copied, and may lie in the buffer itself. Pointers into the text
// live until the next operation that changes it. When memory runs out the buffer is left without storage, as a new
// one is. A buffer belongs to one thread at a time.
template <class Allocator>
class CPWStringBuffer : private CPWStringBufferMembers<Allocator> {
public:
    // As a last position: the end of the text.
    static constexpr std::size_t kToEnd = static_cast<std::size_t>(-1);
    // The most characters that a storage may have; asking for more is running out of memory.
    static constexpr std::size_t kMaxCapacity = 0x7FFFFF00;

    CPWStringBuffer() noexcept = default;
    // An empty text with room for that many characters.
    explicit CPWStringBuffer(std::size_t size) noexcept;
    // A copy of the text, in the middle of its storage or at its start. Null gives a buffer without storage.
    explicit CPWStringBuffer(const WCHAR* text, DWORD tag = 0, bool centre = true) noexcept;
    CPWStringBuffer(CPWStringBuffer&& other) noexcept { TakeOver(other); }
    CPWStringBuffer& operator=(CPWStringBuffer&& other) noexcept {
        if (this != &other) {
            Free();
            TakeOver(other);
        }
        return *this;
    }
    ~CPWStringBuffer() { Free(); }

    // Releases the storage and the multibyte form; the tag stays.
    void Free() noexcept;
    // Replaces the storage by one for refsize characters, exactly or with room to grow, and an empty text in its
    // middle. Returns the storage, which the buffer owns; null when memory runs out.
    WCHAR* Allocate(std::size_t refsize, bool grow) noexcept;

    // Null erases the whole text. A multibyte text that cannot be converted leaves the text as it is.
    CPWStringBuffer& Assign(const WCHAR* text, bool centre = true) noexcept;
    CPWStringBuffer& Assign(const char* text) noexcept;
    // Null adds nothing, nor does a multibyte text that cannot be converted.
    CPWStringBuffer& Append(const WCHAR* text) noexcept;
    CPWStringBuffer& Append(const char* text) noexcept;
    // Inserts the first count characters of the text (0: all of them) before a position, or at the end when the
    // position lies behind it. True when something was inserted.
    bool Insert(const WCHAR* text, std::size_t position, std::size_t count = 0) noexcept;
    // Removes the characters from first to last, both included. True when something was removed.
    bool Erase(std::size_t first = 0, std::size_t last = kToEnd) noexcept;

    // Makes the text start at another character of the storage, without moving anything; an offset that cannot be
    // recorded becomes 0, one behind the storage its last character. Returns 0.
    DWORD SetOffset(std::size_t offset) noexcept;
    // The storage with the text moved to its start; the buffer keeps it. Null without storage.
    WCHAR* GetBuffer() noexcept;
    // Hands the storage over to the caller, who releases it by its kind; the text is moved to its start first unless
    // the offset is kept. Null without storage. The buffer is left without storage.
    WCHAR* Detach(bool keepOffset = false) noexcept;
    // For an out-parameter: frees what is held and gives the place for a BSTR, which the buffer then owns.
    BSTR* put() noexcept requires std::is_same_v<Allocator, CPBstrAllocator> {
        Free();
        return &mBuffer;
    }

    // The text in the C locale's multibyte form, valid until the next call or change; the default for an empty text
    // and for one that has no such form.
    const char* GetMultiByte(const char* defaultText = nullptr) noexcept;

    // In characters; 0 without storage.
    std::size_t Length() const noexcept;
    std::size_t Capacity() const noexcept;
    std::size_t Offset() const noexcept;
    // The text's first character; null without storage.
    WCHAR* Text() noexcept { return mBuffer ? mBuffer + Offset() : nullptr; }
    const WCHAR* Text() const noexcept { return mBuffer ? mBuffer + Offset() : nullptr; }
    DWORD Tag() const noexcept { return mTag; }

    // The properties by their ids, 1 to 8. Throw the int -1 when there is no such property, and when it cannot be
    // read or set.
    UINT_PTR GetProperty(unsigned id);
    void SetProperty(unsigned id, UINT_PTR value);

private:
    using Members = CPWStringBufferMembers<Allocator>;
    friend Members;

public:
    using Members::mCapacityProperty;
    using Members::mConstTextProperty;
    using Members::mDetachedProperty;
    using Members::mLengthProperty;
    using Members::mOffsetProperty;
    using Members::mStorageProperty;
    using Members::mTagProperty;
    using Members::mTextProperty;

private:
    using Members::mBuffer;
    using Members::mCapacity;
    using Members::mMultiByte;
    using Members::mOffset;
    using Members::mTag;

    struct StorageRelease {
        void operator()(WCHAR* storage) const noexcept { Allocator::Release(storage); }
    };
    using OwnedStorage = std::unique_ptr<WCHAR, StorageRelease>;
    // What was taken out of a buffer while its text moves to another storage: what is added may lie in either.
    struct Former {
        OwnedStorage storage;
        MallocText<BYTE> multiByte;
    };

    void TakeOver(CPWStringBuffer& other) noexcept;
    Former TakeOut() noexcept;
    std::size_t NearestOffset(std::size_t offset) const noexcept;
    void Place(const WCHAR* text, std::size_t length, std::size_t offset) noexcept;
    Former MakeRoom(std::size_t newLength) noexcept;
    bool InsertPart(const WCHAR* text, std::size_t position, std::size_t count) noexcept;
    bool InsertAtEnd(const WCHAR* text, std::size_t length, std::size_t count) noexcept;
    bool InsertReallocating(const WCHAR* text, std::size_t position, std::size_t count) noexcept;
    void InsertInPlace(const WCHAR* text, std::size_t position, std::size_t count) noexcept;
    void ConvertTo(std::size_t start, const char* text) noexcept;
    void ReleaseMultiByte() noexcept { MallocText<BYTE>(std::exchange(mMultiByte, nullptr)); }
};

using CPBstrBuffer = CPWStringBuffer<CPBstrAllocator>;
using CPHeapBuffer = CPWStringBuffer<CPHeapAllocator>;

}  // namespace wncom
