#include "host/scene_walk.h"

#include <gtest/gtest.h>

#include "base/wide_text.h"
#include "host/memory/scene_file.h"

namespace orvane {
namespace {

std::string Names(const std::vector<host::INode*>& nodes) {
  std::string names;
  for (host::INode* node : nodes)
    names += ToUtf8(node->GetName()) + " ";
  return names;
}

TEST(SceneWalk, ListsChildrenBeforeParentsInIndexOrderWithoutTheRoot) {
  //  root ─┬─ A ─┬─ A1 ── A1a
  //        │     └─ A2
  //        └─ B
  auto result = host::memory::LoadSceneText(R"({
    "format": "orvane-scene/1",
    "nodes": [
      {"id": "a", "name": "A"}, {"id": "a1", "name": "A1", "parent": "a"},
      {"id": "b", "name": "B"}, {"id": "a2", "name": "A2", "parent": "a"},
      {"id": "a1a", "name": "A1a", "parent": "a1"}
    ]})",
                                            ".");
  ASSERT_TRUE(result.scene) << result.error;
  EXPECT_EQ(Names(ListSceneNodes(*result.scene)), "A1a A1 A2 A B ");
}

TEST(SceneWalk, HandlesHierarchiesDeeperThanTheCallStack) {
  std::string nodes = R"({"id": "n0", "name": "n0"})";
  const int depth = 100000;
  for (int i = 1; i < depth; ++i) {
    nodes +=
        R"(,{"id": "n)" + std::to_string(i) + R"(", "parent": "n)" + std::to_string(i - 1) + "\"}";
  }
  auto result =
      host::memory::LoadSceneText(R"({"format": "orvane-scene/1", "nodes": [)" + nodes + "]}", ".");
  ASSERT_TRUE(result.scene) << result.error;
  auto listed = ListSceneNodes(*result.scene);
  ASSERT_EQ(listed.size(), static_cast<size_t>(depth));
  EXPECT_EQ(listed.back()->GetName(), u"n0");
}

}  // namespace
}  // namespace orvane
