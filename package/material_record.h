// An object's material as the package carries it: a plain record, or a multi-material record
// with one slot record per sub-material.
#pragma once

#include <string>
#include <vector>

#include "graph/node_tree.h"
#include "host/mtl.h"

namespace orvane {

// The standard multi-material, or a class named like one ("Multi" without "Texture").
bool IsMultiMaterial(const host::Mtl& material);

// The record as UTF-8 appended to `out`; "null" without a material. Indented for its place in
// an object record. `errors` is the object's error list; nothing here adds to it.
void AppendMaterialRecord(const WriteContext& context, NodeTreeState& state,
                          const host::Mtl* material, std::vector<std::u16string>& errors,
                          std::string& out);

}  // namespace orvane
