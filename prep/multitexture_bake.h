// Randomising maps baked into vertex colours.
//
// MultiTexture and CoronaMultiMap pick one of their sub-maps per mesh element or per material id
// at render time, which the service cannot evaluate. Before the export the choice is written
// into each affected mesh as a grey value in the vertex-colour channel: the index of the chosen
// sub-map among the active ones, spread over 0..1 and stored in sRGB form. The scene keeps it.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "host/interface.h"
#include "host/mtl.h"
#include "host/node.h"

namespace orvane {

enum class MultiMapKind { kMultiTexture, kCoronaMultiMap };

struct MultiMap {
  host::Texmap* map = nullptr;
  MultiMapKind kind = MultiMapKind::kMultiTexture;
};

// The label of the kind in log lines: its class name.
std::u16string_view MultiMapLabel(MultiMapKind kind);

// The first MultiTexture or CoronaMultiMap below `object`, depth first: sub-maps in slot order,
// then (for a material) sub-materials in index order. Each object is looked at once.
std::optional<MultiMap> FindMultiMap(host::MtlBase* object,
                                     std::unordered_set<host::MtlBase*>& visited);

// Linear 0..1 to the sRGB-encoded grey that is stored.
float EncodeSrgbGrey(float linear);

// One grey per face from its material id: active items (beyond the flag table, or flagged) are
// numbered 0, 1, …; an id naming no active item gets 0.
bool BakeFaceMaterialId(host::INode& node, int itemCount, const std::vector<bool>& activeFlags,
                        host::TimeValue t);

// One grey per mesh element (faces sharing a vertex), chosen from the map's "seed".
bool BakeMeshElements(host::INode& node, const host::Texmap& map, int activeCount,
                      host::TimeValue t);

// Bakes every geometry node whose material holds a multi map, with a log line per decision.
// Answers the number of nodes baked successfully.
int32_t BakeMultiTextureVC(host::Interface& scene);

}  // namespace orvane
