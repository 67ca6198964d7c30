// The package's "environment" section: the host's background and environment map, and the
// renderer's own background when it has one.
#pragma once

#include <string>
#include <vector>

#include "graph/node_tree.h"

namespace orvane {

std::u16string WriteEnvironmentJson(const WriteContext& context, NodeTreeState& state,
                                    std::vector<std::u16string>& log);

}  // namespace orvane
