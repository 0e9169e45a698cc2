#include "platform/core/Handles.h"

#include <array>
#include <atomic>
#include <deque>
#include <mutex>
#include <new>

#include "platform/core/Errors.h"

namespace wnplatform {
namespace {

static_assert(sizeof(HANDLE) == 8, "a handle holds the number and the generation of its slot");

// A slot's state: its generation in the upper half, odd while a handle names it, and in the lower half the number
// of references to its object, of which the open handle is one. Both change in one step, so a lookup never sees an
// object that is being destroyed, and a closed handle never finds the slot's next object.
struct Slot {
    std::atomic<std::uint64_t> state{0};
    std::atomic<KernelObject*> object{nullptr};
};

constexpr std::uint64_t kGenerationStep = std::uint64_t{1} << 32;
constexpr std::size_t kChunkSlots = 1024;
constexpr std::size_t kChunks = 1024;
using Chunk = std::array<Slot, kChunkSlots>;

// Chunks are never moved or freed, so lookups need no lock.
struct Table {
    std::array<std::atomic<Chunk*>, kChunks> chunks{};
    std::mutex lock;
    std::size_t used = 0;          // guarded by lock
    std::deque<std::size_t> free;  // guarded by lock; the slot that has rested longest is taken first
};

// Never destroyed: other modules may close handles while the process ends.
Table& TheTable() {
    static Table& table = *new Table;
    return table;
}

// A handle is a multiple of four, as on Windows, and never null or INVALID_HANDLE_VALUE: the generation from bit 22
// up, the slot's number plus one below.
constexpr unsigned kGenerationShift = 22;

HANDLE MakeHandle(std::size_t index, std::uint64_t generation) noexcept {
    return reinterpret_cast<HANDLE>((generation << kGenerationShift) | ((index + 1) << 2));
}

struct Place {
    Slot* slot;
    std::size_t index;
    std::uint64_t generation;
};

Place Find(HANDLE handle) noexcept {
    const auto value = reinterpret_cast<std::uintptr_t>(handle);
    const std::size_t number = (value & ((std::uint64_t{1} << kGenerationShift) - 1)) >> 2;
    if (number == 0 || (value & 3) != 0) return {};
    const std::size_t index = number - 1;
    Chunk* chunk = TheTable().chunks[index / kChunkSlots].load(std::memory_order_acquire);
    if (!chunk) return {};
    return {&(*chunk)[index % kChunkSlots], index, value >> kGenerationShift};
}

bool IsOpen(const Place& place, std::uint64_t state) noexcept {
    return (state >> 32) == place.generation && (place.generation & 1) != 0;
}

void Destroy(Slot& slot, std::size_t index) noexcept {
    delete slot.object.exchange(nullptr, std::memory_order_acquire);
    Table& table = TheTable();
    const std::scoped_lock guard(table.lock);
    try {
        table.free.push_back(index);
    } catch (const std::bad_alloc&) {
        // The slot stays unused: better than a failing close.
    }
}

void DropReference(Slot& slot, std::size_t index) noexcept {
    const std::uint64_t before = slot.state.fetch_sub(1, std::memory_order_acq_rel);
    if (static_cast<std::uint32_t>(before) == 1) Destroy(slot, index);
}

std::size_t TakeSlot(Table& table) {
    const std::scoped_lock guard(table.lock);
    if (!table.free.empty()) {
        const std::size_t index = table.free.front();
        table.free.pop_front();
        return index;
    }
    if (table.used == kChunkSlots * kChunks) throw std::bad_alloc();
    std::atomic<Chunk*>& chunk = table.chunks[table.used / kChunkSlots];
    if (!chunk.load(std::memory_order_relaxed)) chunk.store(new Chunk, std::memory_order_release);
    return table.used++;
}

}  // namespace

DWORD KernelObject::Wait(DWORD) noexcept {
    SetLastError(ERROR_INVALID_HANDLE);
    return WAIT_FAILED;
}

HANDLE AddObject(std::unique_ptr<KernelObject> object) {
    Table& table = TheTable();
    const std::size_t index = TakeSlot(table);
    Slot& slot = (*table.chunks[index / kChunkSlots].load(std::memory_order_acquire))[index % kChunkSlots];
    const std::uint64_t generation =
        static_cast<std::uint32_t>((slot.state.load(std::memory_order_relaxed) >> 32) + 1);
    slot.object.store(object.release(), std::memory_order_relaxed);
    slot.state.store(generation * kGenerationStep + 1, std::memory_order_release);
    return MakeHandle(index, generation);
}

KernelObject* AcquireObject(HANDLE handle) noexcept {
    const Place place = Find(handle);
    if (!place.slot) return nullptr;
    std::uint64_t state = place.slot->state.load(std::memory_order_relaxed);
    do {
        if (!IsOpen(place, state)) return nullptr;
    } while (!place.slot->state.compare_exchange_weak(state, state + 1, std::memory_order_acquire,
                                                      std::memory_order_relaxed));
    return place.slot->object.load(std::memory_order_relaxed);
}

void ReleaseObject(HANDLE handle) noexcept {
    const Place place = Find(handle);
    DropReference(*place.slot, place.index);
}

BOOL CloseObject(HANDLE handle, bool (*accepts)(ObjectKind)) noexcept {
    const ObjectUse<KernelObject> object(handle);
    if (!object) return FALSE;
    if (!accepts(object->kind)) return Fail(ERROR_INVALID_HANDLE);
    const Place place = Find(handle);
    std::uint64_t state = place.slot->state.load(std::memory_order_relaxed);
    do {
        // Another thread has closed it in the meantime.
        if (!IsOpen(place, state)) return Fail(ERROR_INVALID_HANDLE);
    } while (!place.slot->state.compare_exchange_weak(state, state + kGenerationStep, std::memory_order_acq_rel,
                                                      std::memory_order_relaxed));
    // The handle's own reference; the object goes with the last one.
    DropReference(*place.slot, place.index);
    return TRUE;
}

}  // namespace wnplatform

using wnplatform::ObjectKind;

BOOL CloseHandle(HANDLE handle) {
    return wnplatform::CloseObject(handle, [](ObjectKind kind) { return kind != ObjectKind::Search; });
}

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
    const wnplatform::ObjectUse<wnplatform::KernelObject> object(handle);
    return object ? object->Wait(milliseconds) : WAIT_FAILED;
}
