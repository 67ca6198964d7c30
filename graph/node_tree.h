// A material or map and everything below it as one JSON object: the node tree.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "graph/write_context.h"
#include "host/mtl.h"

namespace orvane {

// The walker's memory. Node ids come from a counter that is never reset, so they stay unique for
// as long as the state lives (the plug-in keeps one per loaded module); the visited list, reset
// before every tree, makes a node met again in the same tree a reference to its first writing.
struct NodeTreeState {
  uint32_t nodeCounter = 0;
  // The first id written for each handle, so a "ref" finds it without a scan.
  FlatMap<host::AnimHandle, uint32_t> visited;
};

void ResetVisitedNodes(NodeTreeState& state);

// The node tree of `object` with its outer indent at 2 x depth blanks, as UTF-8 appended to
// `out`; "null" for null. Trees are written straight into the package's bytes: a tree rendered
// again from its template is never held as wide text.
// With kBranchesOnly the template of the tree as a whole is not kept, only those of the trees
// below its root: for a tree that its caller keeps as part of something larger.
enum class KeepTemplates { kWholeTree, kBranchesOnly };
void AppendNodeTree(const WriteContext& context, NodeTreeState& state, const host::MtlBase* object,
                    int depth, std::string& out, KeepTemplates keep = KeepTemplates::kWholeTree);
// The same tree as the core's text (a lone surrogate comes back as U+FFFD, as it is written).
std::u16string WriteNodeTree(const WriteContext& context, NodeTreeState& state,
                             const host::MtlBase* object, int depth);

}  // namespace orvane
