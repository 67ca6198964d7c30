// The scene walk every scene-wide step uses.
#pragma once

#include <vector>

#include "host/interface.h"
#include "host/node.h"

namespace orvane {

// Every node below the root in post-order: each node's children (in index order) before the
// node itself. The root is never listed; hidden nodes are.
std::vector<host::INode*> ListSceneNodes(host::Interface& scene);

}  // namespace orvane
