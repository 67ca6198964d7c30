// The displacement modifier of an object record: the first Corona or V-Ray displacement
// modifier on the node's stack, topmost first.
#pragma once

#include <string>

#include "graph/write_context.h"
#include "host/node.h"

namespace orvane {

// "null" without a node or without such a modifier.
std::u16string BuildDisplacementRecord(const WriteContext& context, const host::INode* node);

}  // namespace orvane
