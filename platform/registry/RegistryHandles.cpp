#include "platform/registry/RegistryHandles.h"

#include <new>
#include <utility>
#include <vector>

namespace wnplatform {
namespace {

// A handle holds its place in the table and how often the place was used before, so that one that was closed stays
// invalid. All values lie below those of the roots, and none is null.
constexpr std::uintptr_t kPlaceBits = 20;
constexpr std::uintptr_t kMaxPlaces = (std::uintptr_t{1} << kPlaceBits) - 1;
constexpr std::uintptr_t kMaxUses = (std::uintptr_t{1} << 11) - 1;

// A key is known by its place in the tree that was last looked at. Both are kept alive: the key may be removed from
// the tree, and the registry may get another tree.
struct Place {
    std::shared_ptr<const RegistryTree> tree;
    std::shared_ptr<const RegistryKey> key;  // null once it is known to be removed
    REGSAM access = 0;
    std::uintptr_t uses = 0;
    bool open = false;
};

// Guarded by the registry's lock, which every view holds.
struct Table {
    std::vector<Place> places;
    std::vector<std::uintptr_t> free;
};

Table& TheTable() {
    static Table* const table = new Table;
    return *table;
}

Place* Find(HKEY handle) {
    const auto value = reinterpret_cast<std::uintptr_t>(handle);
    const std::uintptr_t index = (value & kMaxPlaces) - 1;
    auto& places = TheTable().places;
    if (index >= places.size()) return nullptr;
    Place& place = places[index];
    return place.open && value == ((place.uses << kPlaceBits) | (index + 1)) ? &place : nullptr;
}

const RegistryKey* RootKey(const RegistryTree& tree, HKEY handle) {
    if (handle == HKEY_LOCAL_MACHINE) return tree.machine;
    if (handle == HKEY_CLASSES_ROOT) return tree.classes;
    return handle == HKEY_CURRENT_USER ? tree.user : nullptr;
}

}  // namespace

bool IsRootKey(HKEY handle) noexcept {
    return handle == HKEY_LOCAL_MACHINE || handle == HKEY_CLASSES_ROOT || handle == HKEY_CURRENT_USER;
}

OpenedKey ResolveKey(const RegistryView& view, HKEY handle) {
    if (const RegistryKey* root = RootKey(*view.tree, handle)) return {ERROR_SUCCESS, root, KEY_ALL_ACCESS};
    Place* const place = Find(handle);
    if (!place) return {ERROR_INVALID_HANDLE};
    if (place->key && place->key->removed) place->key = nullptr;
    if (place->key && place->tree != view.tree) {
        const RegistryKey* const found = view.tree->top.Descend(place->key->Path());
        place->key = found ? found->shared_from_this() : nullptr;
        place->tree = view.tree;
    }
    if (!place->key) return {ERROR_KEY_DELETED};
    return {ERROR_SUCCESS, place->key.get(), place->access};
}

HKEY AddKeyHandle(const RegistryView& view, const RegistryKey& key, REGSAM access) {
    Table& table = TheTable();
    if (table.free.empty()) {
        if (table.places.size() == kMaxPlaces) throw std::bad_alloc();
        table.free.reserve(table.places.size() + 1);
        table.places.emplace_back();
        table.free.push_back(table.places.size() - 1);
    }
    const std::uintptr_t index = table.free.back();
    table.free.pop_back();
    Place& place = table.places[index];
    place = {view.tree, key.shared_from_this(), access, (place.uses + 1) & kMaxUses, true};
    return reinterpret_cast<HKEY>((place.uses << kPlaceBits) | (index + 1));
}

bool RemoveKeyHandle(const std::unique_lock<std::mutex>&, HKEY handle) {
    Place* const place = Find(handle);
    if (!place) return false;
    place->open = false;
    place->key.reset();
    place->tree.reset();
    Table& table = TheTable();
    // Room was made when the place was.
    table.free.push_back(static_cast<std::uintptr_t>(place - table.places.data()));
    return true;
}

}  // namespace wnplatform
