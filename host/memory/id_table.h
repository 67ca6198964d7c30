// Animatables by scene-file id.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "host/animatable.h"

namespace orvane::host::memory {

// One array with open addressing: a scene of hundreds of thousands of ids is looked up once per
// reference while it loads, and a node-based map costs three dependent cache misses per lookup
// where this costs about one. The ids are not copied: each entry views its animatable's own id,
// which must stay unchanged for as long as the entry does.
class IdTable {
 public:
  // Room for `count` entries without growing on the way.
  void Reserve(size_t count);
  // A second entry under the same id replaces the first.
  void Set(std::string_view id, Animatable* animatable);
  Animatable* Find(std::string_view id) const;
  // Removes the entry under `id` if it is `animatable`'s.
  void Erase(std::string_view id, const Animatable* animatable);

 private:
  struct Slot {
    size_t hash = 0;
    std::string_view id;
    Animatable* animatable = nullptr;  // null: the slot is free
  };

  // The slot holding `id`, or the free slot that ends its run.
  size_t SlotOf(std::string_view id, size_t hash) const;
  void Rehash(size_t slotCount);

  std::vector<Slot> slots_;  // a power of two in size, at most half full
  size_t used_ = 0;
};

}  // namespace orvane::host::memory
