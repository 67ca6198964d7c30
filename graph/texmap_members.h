// The special members of the texmap writers: members built from tables, slots and sub-materials.
// Layouts the receiving converter reads: arrays aligned by index, null for a missing entry.
#pragma once

#include "graph/param_rows.h"

namespace orvane {

extern const RowRule kCompositeMapLayers;   // "num_layers", "layers"
extern const RowRule kCompositeMtlLayers;   // "num_layers", "layers"
extern const RowRule kSlotSwitch;           // a map slot's on/off switch
extern const RowRule kCoronaLayeredArrays;  // "layer_count" and four aligned arrays
extern const RowRule
    kCoronaMultimapItems;  // "item_count", "colors", "frequency", "map_enabled", "randomize_by"
extern const RowRule kRaySwitchSources;  // the viewport and displacement source slots and materials
extern const RowRule kScatterMapItems;   // "map_count", "map_items"
extern const RowRule kMorpherBase;       // "base_mtl_index"
extern const RowRule kMultiTextureSwitches;  // "num_textures", "submap_on"
extern const RowRule kVRayMultiSubSlots;     // "random_by" and the per-slot arrays
extern const RowRule kGradientProbe;         // the gradient probe's members and "keys"

}  // namespace orvane
