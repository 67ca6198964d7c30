// A set of wide texts in one array with open addressing. The package build checks every object's
// name against the names taken before it; a node-based set of 100,000 names spends an
// allocation per name and a chain of cache misses per lookup, where this spends about one miss.
#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane {

// The texts are not copied: each entry views text that must stay unchanged while the set lives.
class FlatTextSet {
 public:
  void Reserve(size_t count) {
    size_t slotCount = std::max(kMinSlots, slots_.size());
    while (slotCount < 2 * count)
      slotCount *= 2;
    if (slotCount > slots_.size()) Rehash(slotCount);
  }

  bool Contains(std::u16string_view text) const {
    return !slots_.empty() && slots_[SlotOf(text, HashOf(text))].text.data() != nullptr;
  }

  // False when the text was there already.
  bool Insert(std::u16string_view text) {
    if (2 * (size_ + 1) > slots_.size()) Rehash(std::max(kMinSlots, 2 * slots_.size()));
    size_t hash = HashOf(text);
    Slot& slot = slots_[SlotOf(text, hash)];
    if (slot.text.data() != nullptr) return false;
    // An empty text views no characters; any non-null address marks the slot as used.
    slot = {hash, text.data() != nullptr ? text : std::u16string_view(u"", 0)};
    ++size_;
    return true;
  }

 private:
  static constexpr size_t kMinSlots = 16;
  struct Slot {
    size_t hash = 0;
    std::u16string_view text;  // no address: the slot is free
  };

  static size_t HashOf(std::u16string_view text) { return std::hash<std::u16string_view>()(text); }

  // The slot holding `text`, or the free slot that ends its run.
  size_t SlotOf(std::u16string_view text, size_t hash) const {
    size_t mask = slots_.size() - 1;
    size_t at = hash & mask;
    while (slots_[at].text.data() != nullptr &&
           (slots_[at].hash != hash || slots_[at].text != text))
      at = (at + 1) & mask;
    return at;
  }

  void Rehash(size_t slotCount) {
    std::vector<Slot> old = std::exchange(slots_, std::vector<Slot>(slotCount));
    for (const Slot& slot : old) {
      if (slot.text.data() != nullptr) slots_[SlotOf(slot.text, slot.hash)] = slot;
    }
  }

  std::vector<Slot> slots_;  // a power of two in number, at most half of them used
  size_t size_ = 0;
};

}  // namespace orvane
