// A hash map from small keys (pointers, handles, pairs of them) to values, held in one array with
// open addressing. A package build looks its materials, maps and visited nodes up once or more
// per object record; a node-based map spends a cache miss on the bucket and another on the node,
// where this spends one on the slot.
#pragma once

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>
#include <vector>

#include "base/prefetch.h"

namespace orvane {

// The bits a key is hashed from: the key itself for integers and pointers.
template <class Key>
struct FlatKeyBits {
  uint64_t operator()(Key key) const {
    if constexpr (std::is_pointer_v<Key>) {
      return reinterpret_cast<uintptr_t>(key);
    } else {
      return static_cast<uint64_t>(key);
    }
  }
};

// The value-initialised key marks an empty slot, so it is never a key of the map.
template <class Key, class Value, class KeyBits = FlatKeyBits<Key>>
class FlatMap {
 public:
  size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }

  Value* Find(const Key& key) {
    if (slots_.empty()) return nullptr;
    Slot& slot = slots_[SlotIndex(key)];
    return slot.key == Key{} ? nullptr : &slot.value;
  }
  const Value* Find(const Key& key) const { return const_cast<FlatMap*>(this)->Find(key); }

  // Asks for the key's home slot to be brought near, for a Find a little later.
  void PrefetchSlot(const Key& key) const {
    if (!slots_.empty()) Prefetch(&slots_[HomeOf(key)]);
  }

  // The key's value, value-initialised and true when it was not there. The pointer stays valid
  // until the next insertion.
  std::pair<Value*, bool> TryEmplace(const Key& key) {
    assert(!(key == Key{}));
    if (2 * (size_ + 1) > slots_.size()) Grow();
    Slot& slot = slots_[SlotIndex(key)];
    if (!(slot.key == Key{})) return {&slot.value, false};
    slot.key = key;
    ++size_;
    return {&slot.value, true};
  }

  // Removes the key if it is there, and says whether it was. Later entries of its run move back
  // into the hole unless their home lies after it, so every entry stays reachable from its home
  // without marks for removed ones.
  bool Erase(const Key& key) {
    if (slots_.empty()) return false;
    size_t mask = slots_.size() - 1;
    size_t hole = SlotIndex(key);
    if (slots_[hole].key == Key{}) return false;
    for (size_t next = (hole + 1) & mask; !(slots_[next].key == Key{}); next = (next + 1) & mask) {
      size_t home = HomeOf(slots_[next].key);
      bool homeAfterHole =
          hole <= next ? (hole < home && home <= next) : (hole < home || home <= next);
      if (homeAfterHole) continue;
      slots_[hole] = std::move(slots_[next]);
      hole = next;
    }
    slots_[hole] = Slot{};
    --size_;
    return true;
  }

  // Room for `count` keys without growing on the way.
  void Reserve(size_t count) {
    size_t slotCount = std::max(kMinSlots, slots_.size());
    while (slotCount < 2 * count)
      slotCount *= 2;
    if (slotCount > slots_.size()) Rehash(slotCount);
  }

  // Keeps the room for the next use, unless it is far more than this use needed: a map cleared
  // before each small tree must not cost the memory of the largest one each time.
  void clear() {
    if (slots_.size() > kMinSlots && 8 * size_ < slots_.size()) {
      slots_.clear();
      slots_.shrink_to_fit();
    } else {
      for (Slot& slot : slots_)
        slot = Slot{};
    }
    size_ = 0;
  }

  template <class Visit>
  void ForEach(Visit visit) const {
    for (const Slot& slot : slots_) {
      if (!(slot.key == Key{})) visit(slot.key, slot.value);
    }
  }

  // Same keys with equal values, in whatever order they were entered.
  friend bool operator==(const FlatMap& a, const FlatMap& b) {
    if (a.size_ != b.size_) return false;
    bool equal = true;
    a.ForEach([&](const Key& key, const Value& value) {
      const Value* other = b.Find(key);
      equal = equal && other != nullptr && *other == value;
    });
    return equal;
  }

 private:
  static constexpr size_t kMinSlots = 16;
  struct Slot {
    Key key{};
    Value value{};
  };

  // Multiplying by 2^64 over the golden ratio spreads keys that differ only in low or aligned
  // bits (pointers) over the whole table; linear probing then finds the key or the empty slot
  // where it belongs.
  size_t HomeOf(const Key& key) const {
    size_t mask = slots_.size() - 1;
    return static_cast<size_t>((KeyBits()(key) * 0x9E3779B97F4A7C15ull) >> 32) & mask;
  }

  size_t SlotIndex(const Key& key) const {
    size_t mask = slots_.size() - 1;
    size_t index = HomeOf(key);
    while (!(slots_[index].key == Key{}) && !(slots_[index].key == key))
      index = (index + 1) & mask;
    return index;
  }

  void Grow() { Rehash(slots_.empty() ? kMinSlots : 2 * slots_.size()); }

  void Rehash(size_t slotCount) {
    std::vector<Slot> old = std::exchange(slots_, std::vector<Slot>(slotCount));
    for (Slot& slot : old) {
      if (!(slot.key == Key{})) slots_[SlotIndex(slot.key)] = std::move(slot);
    }
  }

  std::vector<Slot> slots_;  // a power of two in number, at most half of them used
  size_t size_ = 0;
};

}  // namespace orvane
