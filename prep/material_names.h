// Safe, unique material names for the export, and the user's names put back afterwards.
//
// The service matches materials by name, so before the FBX export every material reachable from
// the scene's geometry is given a name of safe characters that no other such material has. The
// restore list records every change so that the send can undo it on every path out.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/interface.h"
#include "host/mtl.h"

namespace orvane {

struct MtlRestoreEntry {
  host::AnimHandle handle = 0;    // 0 when the host gave none
  host::Mtl* material = nullptr;  // used only when there is no handle
  std::u16string previousName;
};

// Letters, digits, "-" and "_" are kept, everything else becomes "_"; runs of "_" become one;
// trailing "_" go. A result longer than 56 code units is cut to 49 (less trailing "_") plus "_"
// and six hex digits of a hash over the unsanitised name.
std::u16string SanitizeMaterialName(std::u16string_view name);

// Renames the materials of the scene's geometry nodes (post-order; each material before its
// sub-materials; each material once). A name group of one gets the sanitised name; a group of
// two or more gets it with "_01", "_02", … in discovery order. One entry per rename, in order.
std::vector<MtlRestoreEntry> DeduplicateMaterialNames(host::Interface& scene);

// Puts every recorded name back, first to last. Answers how many entries could not be restored
// (the material was deleted, or the handle now names something else).
int32_t RestoreMaterialNames(host::Interface& scene, const std::vector<MtlRestoreEntry>& list);

}  // namespace orvane
