// Animatables by scene-file id.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/flat_map.h"
#include "host/animatable.h"

namespace orvane::host::memory {

// A flat map: a scene of hundreds of thousands of ids is looked up once per reference while it
// loads, and a node-based map costs three dependent cache misses per lookup where this costs
// about one. The ids are not copied: each entry views its animatable's own id, which must stay
// unchanged for as long as the entry does. Ids are never empty.
class IdTable {
 public:
  // Room for `count` entries without growing on the way.
  void Reserve(size_t count) { entries_.Reserve(count); }
  // A second entry under the same id replaces the first.
  void Set(std::string_view id, Animatable* animatable);
  Animatable* Find(std::string_view id) const;
  // Asks for the slot of `id` to be brought near, for a lookup a little later.
  void Prefetch(std::string_view id) const { entries_.PrefetchSlot(KeyOf(id)); }
  // Removes the entry under `id` if it is `animatable`'s.
  void Erase(std::string_view id, const Animatable* animatable);

 private:
  // The hash is kept beside the id, so most slots that are not the one are passed over without
  // comparing text.
  struct Key {
    size_t hash = 0;
    std::string_view id;
    bool operator==(const Key&) const = default;
  };
  struct KeyBits {
    uint64_t operator()(const Key& key) const { return key.hash; }
  };
  static Key KeyOf(std::string_view id);

  FlatMap<Key, Animatable*, KeyBits> entries_;
};

}  // namespace orvane::host::memory
