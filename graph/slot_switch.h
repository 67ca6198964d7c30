// Whether a map slot is switched on in its owner.
#pragma once

#include <optional>
#include <string_view>

#include "host/animatable.h"

namespace orvane {

// The boolean toggle of the slot parameter `slotParam`, tried as "texmapOn" + the rest for a
// "texmap..." name, then slotParam + "Enabled", then slotParam + "_on"; the first that exists
// decides. Nullopt when the owner has none of them.
std::optional<bool> FindSlotToggle(const host::Animatable& owner, std::u16string_view slotParam,
                                   host::TimeValue t);

// True unless a parameter of `owner` that holds `map` has a toggle that is off. Null arguments
// count as switched on.
bool IsSubTexmapEnabled(const host::Animatable* owner, const host::Animatable* map,
                        host::TimeValue t);

}  // namespace orvane
