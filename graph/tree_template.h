// Trees and records kept as text with their node ids left out, and written again with the ids
// shifted to where the node counter stands.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "graph/node_tree.h"
#include "graph/write_context.h"

namespace orvane {

// The template of the tree just written into `out` from offset `start`, with the node counter at
// `base` before it; `places` are the ids written since, in order. Null when one of them is of a
// node written before the tree: elsewhere the tree would not come out the same.
TreeTemplate MakeTemplate(std::string_view out, size_t start, std::span<const IdPlace> places,
                          uint32_t base, const NodeTreeState& state);

// Appends the kept template's text with its ids counted on from the node counter, records where
// they went in `places` unless it is null (nothing larger is being kept), and enters its visited
// nodes as the writing did.
void RenderTemplate(const TreeTemplate& tree, NodeTreeState& state, std::vector<IdPlace>* places,
                    std::string& out);

}  // namespace orvane
