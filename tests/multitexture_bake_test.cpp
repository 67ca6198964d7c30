// Randomising maps baked into vertex colours: the decision, the log and the greys written.
#include <gtest/gtest.h>

#include <cmath>

#include "base/wide_text.h"
#include "host/memory/scene_file.h"
#include "prep/multitexture_bake.h"

namespace orvane {
namespace {

using host::memory::MemObject;
using host::memory::MemScene;

std::unique_ptr<MemScene> Load(const std::string& text) {
  auto loaded = host::memory::LoadSceneText(text, ".");
  EXPECT_TRUE(loaded.scene) << loaded.error;
  return std::move(loaded.scene);
}

// The baked mesh of a node: the object that now stands in the node.
const host::memory::MemMesh& MeshOf(MemScene& scene, const std::string& nodeId) {
  auto* node = static_cast<host::memory::MemNode*>(scene.FindById(nodeId));
  return *static_cast<MemObject*>(node->GetObjectRef())->mesh;
}

std::vector<float> Greys(const host::memory::MemMesh& mesh) {
  std::vector<float> greys;
  for (const host::Point3& colour : mesh.vertexColors) {
    EXPECT_EQ(colour.x, colour.y);
    EXPECT_EQ(colour.x, colour.z);
    greys.push_back(colour.x);
  }
  return greys;
}

std::vector<std::u16string> LogLines(const MemScene& scene) {
  std::vector<std::u16string> lines;
  for (const auto& entry : scene.log) {
    EXPECT_EQ(entry.title, u"Orvane");
    lines.push_back((entry.type == host::SYSLOG_WARN ? u"W " : u"I ") + entry.text);
  }
  return lines;
}

TEST(EncodeSrgbGrey, FollowsTheSrgbCurveAndClamps) {
  const struct {
    float linear, stored;
  } cases[] = {{-1, 0}, {0, 0}, {0.002f, 0.02584f}, {0.5f, 0.735357f}, {1, 1}, {3, 1}};
  for (const auto& c : cases)
    EXPECT_NEAR(EncodeSrgbGrey(c.linear), c.stored, 1e-5) << c.linear;
}

// A MultiTexture with three active slots and seed 0 on a mesh of three separate triangles:
// element 0 takes h = 1 (index 1, linear 0.5), element 1 h = 2 (index 2, 1.0), element 2 h = 3
// (index 0, 0). The mesh is not a triangle-mesh object, so the node gets the converted one.
TEST(BakeMultiTextureVC, MeshElementsTakeTheirGreyFromTheSeed) {
  auto scene = Load(R"({"format": "orvane-scene/1",
    "nodes": [{"id": "tiles", "name": "Tiles", "object": "poly", "material": "m"}],
    "objects": [{"id": "poly", "class": "Editable Poly", "superClass": "geometry", "mesh": {
      "vertices": [[0,0,0],[1,0,0],[0,1,0], [5,0,0],[6,0,0],[5,1,0], [9,0,0],[9,1,0],[8,1,0]],
      "faces": [[6,7,8], [0,1,2], [3,4,5]]}}],
    "materials": [{"id": "m", "class": "VRayMtl", "name": "Tiles",
                   "slots": [{"name": "diffuse", "map": "multi"}]}],
    "maps": [{"id": "multi", "class": "MultiTexture", "slots": [
        {"name": "1", "map": null}, {"name": "2", "map": null}, {"name": "3", "map": null}],
      "params": [[{"name": "submap_on", "type": "bool_tab", "value": [true, true, true]},
                  {"name": "seed", "type": "float", "value": 0.9}]]}]})");
  EXPECT_EQ(BakeMultiTextureVC(*scene), 1);
  const auto& mesh = MeshOf(*scene, "tiles");
  // Elements are numbered by their lowest face: face 0 (vertices 6-8) is element 0.
  std::vector<float> greys = Greys(mesh);
  std::vector<float> expected{1, 1, 1, 0, 0, 0, 0.735357f, 0.735357f, 0.735357f};
  ASSERT_EQ(greys.size(), expected.size());
  for (size_t i = 0; i < greys.size(); ++i)
    EXPECT_NEAR(greys[i], expected[i], 1e-5) << i;
  EXPECT_EQ(mesh.colorFaces, (std::vector<std::array<int, 3>>{{6, 7, 8}, {0, 1, 2}, {3, 4, 5}}));
  EXPECT_EQ(mesh.cacheInvalidations, 1);
  EXPECT_EQ(scene->objectReplacements.size(), 1u);
  EXPECT_EQ(LogLines(*scene), (std::vector<std::u16string>{
                                  u"I [Orvane VC] Tiles (MultiTexture): bake OK (activeCount=3)"}));
}

TEST(BakeMultiTextureVC, ElementsJoinThroughSharedVerticesInBreadthFirstOrder) {
  // Two triangles sharing vertex 2 form one element; the third triangle is another.
  auto scene = Load(R"({"format": "orvane-scene/1",
    "nodes": [{"id": "n", "name": "N", "object": "tri", "material": "m"}],
    "objects": [{"id": "tri", "class": "Editable Mesh", "superClass": "geometry", "triObject": true,
      "mesh": {"vertices": [[0,0,0],[1,0,0],[0,1,0],[1,1,0],[7,7,7],[8,7,7],[7,8,7]],
               "faces": [[0,1,2], [4,5,6], [2,1,3]]}}],
    "materials": [{"id": "m", "class": "VRayMtl", "name": "M", "slots": [{"name": "d", "map": "multi"}]}],
    "maps": [{"id": "multi", "class": "MultiTexture", "slots": [{"name": "1"}, {"name": "2"}],
      "params": [[{"name": "submap_on", "type": "bool_tab", "value": [true, true]},
                  {"name": "seed", "type": "int", "value": 0}]]}]})");
  EXPECT_EQ(BakeMultiTextureVC(*scene), 1);
  // h = 1 → index 1 → 1.0 for element 0 (faces 0 and 2); h = 2 → index 0 → 0 for element 1.
  EXPECT_EQ(Greys(MeshOf(*scene, "n")), (std::vector<float>{1, 1, 1, 1, 0, 0, 0}));
  EXPECT_TRUE(scene->objectReplacements.empty());  // already a triangle mesh: changed in place
}

// CoronaMultiMap, 4 items with 1 and 3 switched off, by material id: ids 0 → 0, 2 → 1.0,
// inactive 1 and 3 → 0, ids beyond the items → 0.
TEST(BakeMultiTextureVC, FaceMaterialIdsMapToActiveItems) {
  auto scene = Load(R"({"format": "orvane-scene/1",
    "nodes": [{"id": "floor", "name": "Floor", "object": "o", "material": "m"}],
    "objects": [{"id": "o", "class": "Plane", "superClass": "geometry", "mesh": {
      "vertices": [[0,0,0],[1,0,0],[0,1,0]],
      "faces": [[0,1,2,0],[0,1,2,1],[0,1,2,2],[0,1,2,3],[0,1,2,4]]}}],
    "materials": [{"id": "m", "class": "CoronaPhysicalMtl", "name": "Floor",
                   "slots": [{"name": "base", "map": "cmm"}]}],
    "maps": [{"id": "cmm", "class": "CoronaMultiMap", "params": [[
      {"name": "items", "type": "int", "value": 4},
      {"name": "texmapsOn", "type": "bool_tab", "value": [true, false, true, false]},
      {"name": "randomizeMeshElement", "type": "bool", "value": true},
      {"name": "randomizeMaterialId", "type": "bool", "value": true}]]}]})");
  EXPECT_EQ(BakeMultiTextureVC(*scene), 1);
  const auto& mesh = MeshOf(*scene, "floor");
  EXPECT_EQ(Greys(mesh), (std::vector<float>{0, 0, 0, 0, 0, 0, 1, 1, 1, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(mesh.colorFaces[4], (std::array<int, 3>{12, 13, 14}));
  EXPECT_EQ(
      LogLines(*scene),
      (std::vector<std::u16string>{
          u"I [Orvane VC] Floor (CoronaMultiMap): items=4 activeCount=2 randomizeMeshElement=true "
          u"randomizeMaterialId=true",
          u"W [Orvane VC] Floor (CoronaMultiMap): both randomizeMeshElement AND "
          u"randomizeMaterialId "
          u"are on \u2014 baking Face Material Id only (exact selection takes priority; Mesh "
          u"Element "
          u"in this combination is not baked, map channel 0 conflict)",
          u"I [Orvane VC] Floor (CoronaMultiMap): Face Material Id bake OK (itemCount=4)"}));
}

TEST(BakeMultiTextureVC, EachDecisionIsLoggedAndOnlyTheFirstMapIsBaked) {
  const struct {
    const char* label;
    std::string params;  // of the CoronaMultiMap "first"
    bool meshChanges;
    std::vector<std::u16string> log;
  } cases[] = {
      {"no active item",
       R"([{"name": "items", "type": "int", "value": 2},
        {"name": "texmapsOn", "type": "bool_tab", "value": [false, false]},
        {"name": "randomizeMaterialId", "type": "bool", "value": true}])",
       false,
       {u"I [Orvane VC] Box (CoronaMultiMap): items=2 activeCount=0 randomizeMeshElement=false "
        u"randomizeMaterialId=true",
        u"W [Orvane VC] Box (CoronaMultiMap): SKIPPED \u2014 activeCount is 0"}},
      {"instance only",
       R"([{"name": "items", "type": "int", "value": 3}])",
       false,
       {u"I [Orvane VC] Box (CoronaMultiMap): items=3 activeCount=3 randomizeMeshElement=false "
        u"randomizeMaterialId=false",
        u"I [Orvane VC] Box (CoronaMultiMap): SKIPPED baking \u2014 Mesh Element not requested "
        u"(Instance-only, driven in Blender)"}},
      {"items not an integer",
       R"([{"name": "items", "type": "float", "value": 3},
        {"name": "randomizeMeshElement", "type": "bool", "value": true}])",
       false,
       {u"I [Orvane VC] Box (CoronaMultiMap): items=0 activeCount=0 randomizeMeshElement=true "
        u"randomizeMaterialId=false",
        u"W [Orvane VC] Box (CoronaMultiMap): SKIPPED \u2014 activeCount is 0"}},
      {"by element",
       R"([{"name": "items", "type": "int", "value": 1},
        {"name": "randomizeMeshElement", "type": "bool", "value": true}])",
       true,
       {u"I [Orvane VC] Box (CoronaMultiMap): items=1 activeCount=1 randomizeMeshElement=true "
        u"randomizeMaterialId=false",
        u"I [Orvane VC] Box (CoronaMultiMap): bake OK (activeCount=1)"}},
  };
  for (const auto& c : cases) {
    // The second multi map sits deeper in a sub-material; depth first, "first" wins.
    auto scene = Load(R"({"format": "orvane-scene/1",
      "nodes": [{"id": "box", "name": "Box", "object": "o", "material": "multi"},
                {"id": "lamp", "name": "Lamp", "object": "light", "material": "multi"}],
      "objects": [{"id": "o", "class": "Box", "superClass": "geometry",
                   "mesh": {"vertices": [[0,0,0],[1,0,0],[0,1,0]], "faces": [[0,1,2]]}},
                  {"id": "light", "class": "CoronaLight", "superClass": "light"}],
      "materials": [
        {"id": "multi", "class": "Multimaterial", "name": "Multi", "subMaterials": ["a", "b"],
         "slots": [{"name": "x", "map": "first"}]},
        {"id": "a", "class": "VRayMtl", "name": "A", "slots": [{"name": "d", "map": "second"}]},
        {"id": "b", "class": "VRayMtl", "name": "B"}],
      "maps": [{"id": "first", "class": "CoronaMultiMap", "params": [)" +
                      c.params + R"(]},
               {"id": "second", "class": "MultiTexture", "slots": [{"name": "1"}],
                "params": [[{"name": "submap_on", "type": "bool_tab", "value": [true]}]]}]})");
    BakeMultiTextureVC(*scene);
    EXPECT_EQ(LogLines(*scene), c.log) << c.label;
    EXPECT_EQ(!MeshOf(*scene, "box").vertexColors.empty(), c.meshChanges) << c.label;
  }
}

TEST(BakeMultiTextureVC, AnObjectThatCannotBecomeAMeshFailsTheBake) {
  auto scene = Load(R"({"format": "orvane-scene/1",
    "nodes": [{"id": "n", "name": "Proxy", "object": "o", "material": "m"}],
    "objects": [{"id": "o", "class": "CoronaProxy", "superClass": "geometry"}],
    "materials": [{"id": "m", "class": "VRayMtl", "name": "M", "slots": [{"name": "d", "map": "t"}]}],
    "maps": [{"id": "t", "class": "MultiTexture", "slots": [{"name": "1"}],
              "params": [[{"name": "submap_on", "type": "bool_tab", "value": [true]}]]}]})");
  EXPECT_EQ(BakeMultiTextureVC(*scene), 0);
  EXPECT_EQ(LogLines(*scene),
            (std::vector<std::u16string>{
                u"W [Orvane VC] Proxy (MultiTexture): bake FAILED (activeCount=1)"}));
}

}  // namespace
}  // namespace orvane
