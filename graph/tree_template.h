// Trees and records kept as text with their node ids left out, and written again with the ids
// shifted to where the node counter stands.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "graph/node_tree.h"
#include "graph/write_context.h"

namespace orvane {

// The template of `text`, just written from counter `base` with `refs` references: every id is
// found after the writer's own "node_id" and "ref" keys, and the nodes it visited are those
// whose ids come after `base`. Null unless exactly the ids that were written are found (a member
// of the same name would add one) and all of them are the text's own (a reference to a node
// written before it would be one that is not).
std::unique_ptr<const TreeTemplate> MakeTemplate(std::string_view text, uint32_t base,
                                                 const NodeTreeState& state, int refs);

// Appends the template's text with its ids counted on from the node counter, and enters its
// visited nodes as the writing did. Answers how many references it wrote.
int RenderTemplate(const TreeTemplate& tree, NodeTreeState& state, std::string& out);

}  // namespace orvane
