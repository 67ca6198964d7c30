#include "graph/slot_switch.h"

#include <string>

#include "graph/param_lookup.h"

namespace orvane {

std::optional<bool> FindSlotToggle(const host::Animatable& owner, std::u16string_view slotParam,
                                   host::TimeValue t) {
  constexpr std::u16string_view kTexmap = u"texmap";
  std::u16string candidates[3];
  int count = 0;
  if (slotParam.substr(0, kTexmap.size()) == kTexmap) {
    candidates[count++] = u"texmapOn" + std::u16string(slotParam.substr(kTexmap.size()));
  }
  candidates[count++] = std::u16string(slotParam) + u"Enabled";
  candidates[count++] = std::u16string(slotParam) + u"_on";
  for (int i = 0; i < count; ++i) {
    ParamValue toggle = FindParamValue(&owner, candidates[i], t);
    if (toggle.kind == ParamKind::kBool) return toggle.boolValue;
    if (toggle.kind == ParamKind::kInt) return toggle.intValue != 0;
  }
  return std::nullopt;
}

bool IsSubTexmapEnabled(const host::Animatable* owner, const host::Animatable* map,
                        host::TimeValue t) {
  if (owner == nullptr || map == nullptr) return true;
  for (int b = 0; b < owner->NumParamBlocks(); ++b) {
    const host::IParamBlock2* block = owner->GetParamBlock(b);
    const host::ParamBlockDesc2* desc = block != nullptr ? block->GetDesc() : nullptr;
    if (desc == nullptr) continue;
    for (int i = 0; i < desc->Count(); ++i) {
      std::optional<std::u16string_view> name = desc->GetParamName(i);
      host::ParamType2 type = desc->GetParamType(i);
      bool holdsMaps = type == host::TYPE_TEXMAP || type == host::TYPE_REFTARG;
      host::Animatable* held = nullptr;
      if (!name || !holdsMaps || !block->GetReference(i, t, held, 0) || held != map) continue;
      if (std::optional<bool> on = FindSlotToggle(*owner, *name, t)) return *on;
    }
  }
  return true;
}

}  // namespace orvane
