#include "host/memory/id_table.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace orvane::host::memory {

namespace {

size_t HashOf(std::string_view id) {
  return std::hash<std::string_view>()(id);
}

}  // namespace

size_t IdTable::SlotOf(std::string_view id, size_t hash) const {
  size_t mask = slots_.size() - 1;
  size_t at = hash & mask;
  while (slots_[at].animatable != nullptr && (slots_[at].hash != hash || slots_[at].id != id)) {
    at = (at + 1) & mask;
  }
  return at;
}

void IdTable::Rehash(size_t slotCount) {
  std::vector<Slot> old = std::exchange(slots_, std::vector<Slot>(slotCount));
  for (const Slot& slot : old) {
    if (slot.animatable != nullptr) slots_[SlotOf(slot.id, slot.hash)] = slot;
  }
}

void IdTable::Reserve(size_t count) {
  size_t slotCount = std::max<size_t>(16, slots_.size());
  while (slotCount < 2 * count)
    slotCount *= 2;
  if (slotCount > slots_.size()) Rehash(slotCount);
}

void IdTable::Set(std::string_view id, Animatable* animatable) {
  if (animatable == nullptr) return;
  if (2 * (used_ + 1) > slots_.size()) Rehash(std::max<size_t>(16, 2 * slots_.size()));
  size_t hash = HashOf(id);
  Slot& slot = slots_[SlotOf(id, hash)];
  if (slot.animatable == nullptr) ++used_;
  slot = {hash, id, animatable};
}

Animatable* IdTable::Find(std::string_view id) const {
  if (slots_.empty()) return nullptr;
  return slots_[SlotOf(id, HashOf(id))].animatable;
}

void IdTable::Erase(std::string_view id, const Animatable* animatable) {
  if (slots_.empty()) return;
  size_t mask = slots_.size() - 1;
  size_t hole = SlotOf(id, HashOf(id));
  if (slots_[hole].animatable == nullptr || slots_[hole].animatable != animatable) return;
  // Later entries of the run move back into the hole unless their home lies after it, so that
  // every entry stays reachable from its home without markers for removed ones.
  for (size_t next = (hole + 1) & mask; slots_[next].animatable != nullptr;
       next = (next + 1) & mask) {
    size_t home = slots_[next].hash & mask;
    bool homeAfterHole =
        hole <= next ? (hole < home && home <= next) : (hole < home || home <= next);
    if (homeAfterHole) continue;
    slots_[hole] = slots_[next];
    hole = next;
  }
  slots_[hole] = Slot{};
  --used_;
}

}  // namespace orvane::host::memory
