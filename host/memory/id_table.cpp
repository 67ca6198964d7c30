#include "host/memory/id_table.h"

#include <functional>

namespace orvane::host::memory {

IdTable::Key IdTable::KeyOf(std::string_view id) {
  return {std::hash<std::string_view>()(id), id};
}

void IdTable::Set(std::string_view id, Animatable* animatable) {
  if (animatable == nullptr) return;
  Key key = KeyOf(id);
  auto [entry, isNew] = entries_.TryEmplace(key);
  if (!isNew) {
    // The entry must view the new animatable's id, not the one it replaces.
    entries_.Erase(key);
    entry = entries_.TryEmplace(key).first;
  }
  *entry = animatable;
}

Animatable* IdTable::Find(std::string_view id) const {
  Animatable* const* found = entries_.Find(KeyOf(id));
  return found != nullptr ? *found : nullptr;
}

void IdTable::Erase(std::string_view id, const Animatable* animatable) {
  Key key = KeyOf(id);
  Animatable* const* found = entries_.Find(key);
  if (found != nullptr && *found == animatable) entries_.Erase(key);
}

}  // namespace orvane::host::memory
