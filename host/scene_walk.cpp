#include "host/scene_walk.h"

#include <utility>

namespace orvane {

std::vector<host::INode*> ListSceneNodes(host::Interface& scene) {
  std::vector<host::INode*> nodes;
  host::INode* root = scene.GetRootNode();
  if (root == nullptr) return nodes;
  // An explicit stack instead of recursion: scenes can nest deeper than the call stack allows.
  std::vector<std::pair<host::INode*, int>> stack{{root, 0}};
  while (!stack.empty()) {
    auto& [node, nextChild] = stack.back();
    if (nextChild < node->NumberOfChildren()) {
      host::INode* child = node->GetChildNode(nextChild++);
      if (child != nullptr) stack.emplace_back(child, 0);
      continue;
    }
    if (node != root) nodes.push_back(node);
    stack.pop_back();
  }
  return nodes;
}

}  // namespace orvane
