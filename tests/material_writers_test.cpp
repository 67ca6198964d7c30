// Class dispatch, the writers' conversions and the probe parsers.
#include <gtest/gtest.h>

#include <cmath>

#include "base/wide_text.h"
#include "graph/bitmap_writers.h"
#include "graph/class_dispatch.h"
#include "graph/material_writers.h"
#include "graph/node_tree.h"
#include "graph/script_probes.h"
#include "host/memory/scene_file.h"
#include "package/material_record.h"

namespace orvane {
namespace {

using host::memory::MemScene;

TEST(ClassDispatch, EveryRowIsReachedInItsPlace) {
  const struct {
    const char16_t* className;
    const char16_t* writer;  // null: no writer
  } cases[] = {
      {u"CoronaBitmap", u"CoronaBitmap"},
      {u"CoronaMtl", u"Corona material"},
      {u"CoronaLayeredMtl", u"Corona layered material"},  // before "ao" and "lightmtl" rows
      {u"CoronaMixTex", u"Corona mix"},
      {u"CoronaBlendMtl", u"Corona blend material"},
      {u"CoronaNormalTex", u"Corona normal"},
      {u"CoronaBumpTex", u"Corona bump"},
      {u"CoronaColor", u"Corona colour"},
      {u"CoronaLightMtl", u"Corona light material"},
      {u"CoronaSkinMtl", u"Corona skin material"},
      {u"CoronaRaySwitchMtl", u"Corona ray switch material"},
      {u"CoronaAOTexmap", u"Corona AO"},
      {u"CoronaCurvature", u"Corona curvature"},
      {u"Corona Mapping Randomizer", u"UVW randomizer"},
      {u"VRayMtl", u"V-Ray material"},
      {u"VRayHDRI", u"V-Ray bitmap"},
      {u"VRayBitmap", u"V-Ray bitmap"},
      {u"VRayNormalMap", u"V-Ray normal"},
      {u"Normal Bump", u"Normal Bump"},
      {u"VRayColor", u"V-Ray colour"},
      {u"VRayDirt", u"V-Ray dirt"},
      {u"VRay2SidedMtl", u"V-Ray two-sided material"},
      {u"VRayLightMtl", u"V-Ray light material"},  // exact, before the "lightmtl" row
      {u"VRayBlendMtl", u"V-Ray blend material"},
      {u"VRayCarPaintMtl", u"V-Ray car-paint material"},
      {u"VRayFastSSS2", u"V-Ray fast SSS material"},
      {u"VRayMultiSubTex", u"V-Ray multi-sub map"},
      {u"VRayCompTex", u"V-Ray composite map"},  // exact, before the "composite" row
      {u"VRayEdgesTex", u"V-Ray edges"},
      {u"VRayStochasticFlakesMtl", u"V-Ray flakes material"},
      {u"VRay alSurface Mtl", u"V-Ray alSurface material"},
      {u"CoronaFrontBack", u"Corona front/back"},
      {u"Falloff", u"Falloff"},
      {u"Mix", u"Corona mix"},
      {u"Noise", u"Noise"},
      {u"Output", u"Output"},
      {u"Gradient", u"Gradient"},
      {u"Gradient Ramp", u"Gradient Ramp"},
      {u"Bitmap", u"Bitmap"},
      {u"BitmapTexture", u"Bitmap"},
      {u"Color Correction", u"Color Correction"},
      {u"Cellular", u"Cellular"},
      {u"RGB Multiply", u"RGB Multiply"},
      {u"Color_Map", u"Color Map"},
      {u"Blend", u"Mix"},
      {u"MultiTexture", u"MultiTexture"},
      {u"Checker", u"Checker"},
      {u"Mask", u"Mask"},
      {u"RGB Tint", u"RGB Tint"},
      {u"ColorMap", u"Color Map"},
      {u"CoronaWire", u"Corona wire"},
      {u"Corona Tile Map", u"Corona tile"},
      {u"Forest Color v2", u"Scatter colour"},
      {u"Perlin Marble", u"Two-colour procedural"},
      {u"Shellac", u"Shellac material"},
      {u"Shell Material", u"Shell material"},
      {u"Material Switcher", u"Material switcher"},
      {u"XRef Material", u"XRef material"},
      {u"Material Output Selector", u"Output selector"},
      {u"Map to Material Conversion", u"Map to material"},
      {u"Morpher", u"Morpher material"},
      {u"Double Sided", u"Double-sided material"},
      {u"Top/Bottom", u"Top/bottom material"},
      {u"Composite", u"Composite material"},  // exact, before the containment row
      {u"CoronaSelectMtl", u"Corona select material"},
      {u"CoronaSelect", u"Corona select map"},
      {u"CoronaTonemapControl", u"Corona tone-map control"},
      {u"CoronaBumpConverter", u"Corona bump converter"},
      {u"Standard (Legacy)", u"Standard material"},  // exact, before the "legacy" row
      {u"PhysicalMaterial", u"Physical material"},   // exact, before the "physical" row
      {u"ai_PBR_metal", u"PBR material"},
      {u"glTF Material", u"glTF material"},
      {u"CoronaPhysicalMtl", u"Corona material"},
      {u"CoronaLegacyMtl", u"Corona material"},
      {u"MyLightMtl", u"Corona light material"},
      {u"OldSkinMtl", u"Corona skin material"},
      {u"Kaolin", u"Corona AO"},  // any name holding "ao"
      {u"CompositeTexturemap", u"Composite map"},
      {u"CoronaColorCorrect", u"Corona colour correct"},
      {u"CoronaMixV2", u"Corona mix"},
      {u"CoronaColorNew", u"Corona colour"},
      {u"Legacy RGB Multiply", u"Corona material"},  // "legacy" comes first
      {u"My RGB Multiply", u"RGB Multiply"},
      {u"color_map_2", u"Color Map"},
      {u"CoronaMultiMap", u"Corona multimap"},
      {u"CoronaRoundEdge", u"Corona round edge"},
      {u"CoronaTriplanar", u"Corona triplanar"},
      {u"Bitmap ", nullptr},  // trailing blank: no exact match
      {u"SomethingElse", nullptr},
  };
  for (const auto& c : cases) {
    const WriterTable* writer = FindWriterForClass(c.className);
    if (c.writer == nullptr) {
      EXPECT_EQ(writer, nullptr) << ToUtf8(c.className);
    } else {
      ASSERT_NE(writer, nullptr) << ToUtf8(c.className);
      EXPECT_EQ(writer->name, c.writer) << ToUtf8(c.className);
    }
  }
}

// Each plain row, given its parameter alone, writes exactly its member: no row is dropped by the
// engine and no host name is shadowed by another row's.
TEST(ClassDispatch, EveryPlainRowWritesItsMember) {
  MemScene scene;
  int checked = 0;
  for (const WriterTable* writer : AllWriters()) {
    for (const ParamRow& row : writer->rows) {
      if (row.rule != nullptr && row.rule->gatesLaterRows) break;
      if (row.rule != nullptr || row.hostName.empty()) continue;
      host::memory::MemTexmap map;
      auto block = std::make_unique<host::memory::MemParamBlock>();
      block->params.push_back({std::u16string(row.hostName), host::TYPE_INT, {4242}});
      map.data.blocks.push_back(std::move(block));
      FragmentList fragments = RunWriter(*writer, WriteContext{scene, 0}, map);
      std::u16string expected = u"\"" + std::u16string(row.jsonKey) + u"\":4242";
      EXPECT_NE(std::find(fragments.begin(), fragments.end(), expected), fragments.end())
          << ToUtf8(writer->name) << ": " << ToUtf8(row.hostName);
      ++checked;
    }
  }
  EXPECT_GT(checked, 600);
}

TEST(ClassDispatch, TypeNamesUseTheConvertersVocabulary) {
  const struct {
    const char16_t* className;
    bool isMaterial;
    const char16_t* type;
  } cases[] = {
      {u"  Bitmap", false, u"Bitmaptexture"},
      {u"Bitmap ", false, u"Bitmap "},
      {u"#Standard (Legacy)", true, u"Standardmaterial"},
      {u"Composite", true, u"compositematerial"},
      {u"Composite", false, u"CompositeTexturemap"},
      {u"VRayMtl", true, u"VRayMtl"},
      {u"TOP BOTTOM", true, u"TopBottom"},
      {u"Top/Bottom", true, u"TopBottom"},
      {u"color correction", false, u"Color_Correction"},
      {u"Output", false, u"output"},
      {u"--", false, u""},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(NormalizeClassTypeName(c.className, c.isMaterial), c.type) << ToUtf8(c.className);
  }
}

// One material in a one-node scene, with the given parameters; returns its writer's output.
std::u16string Written(const std::string& className, const std::string& params,
                       double unitScale = 1.0) {
  auto loaded = host::memory::LoadSceneText(R"({"format": "orvane-scene/1", "unitScale": )" +
                                                std::to_string(unitScale) +
                                                R"(, "materials": [{"id": "m", "class": ")" +
                                                className + R"(", "params": [[)" + params + "]]}]}",
                                            ".");
  EXPECT_TRUE(loaded.scene) << loaded.error;
  if (!loaded.scene) return {};
  WriteContext context{*loaded.scene, 0};
  auto* material = dynamic_cast<host::Mtl*>(loaded.scene->FindById("m"));
  return JoinFragments(WriteParamsForClass(context, *material), u"");
}

TEST(MaterialWriters, CoronaConversions) {
  const struct {
    std::string params;
    double unitScale;
    std::u16string expected;
  } cases[] = {
      {R"({"name": "mapamountBump", "type": "float", "value": 0.5},
          {"name": "baseMapAmount", "type": "float", "value": 0.5})",
       1, u"\"amt_bump\":0.5,\n\"amt_diffuse\":50,\n\"bump_amount\":0.5"},
      {R"({"name": "baseRoughness", "type": "float", "value": 0.25})", 1,
       u"\"reflect_glossiness\":0.75"},
      {R"({"name": "roughnessMode", "type": "int", "value": 1},
          {"name": "baseRoughness", "type": "float", "value": 0.25},
          {"name": "clearcoatRoughness", "type": "float", "value": 0.25})",
       1, u"\"roughness_mode\":1,\n\"reflect_glossiness\":0.25,\n\"coat_roughness\":0.75"},
      {R"({"name": "roughnessMode", "type": "bool", "value": false},
          {"name": "baseRoughness", "type": "int", "value": 1})",
       1, u"\"roughness_mode\":0"},
      {R"({"name": "iorMode", "type": "int", "value": 1}, {"name": "baseIor", "type": "float", "value": 1})",
       1, u"\"ior_mode\":1,\n\"fresnel_ior\":1.78879"},
      {R"({"name": "iorMode", "type": "int", "value": 1}, {"name": "baseIor", "type": "float", "value": 0})",
       1, u"\"ior_mode\":1,\n\"fresnel_ior\":1"},
      {R"({"name": "metalnessMode", "type": "bool", "value": true})", 1,
       u"\"metalness_mode\":true"},
      {R"({"name": "metalnessMode", "type": "int", "value": 2})", 1, u"\"metalness_mode\":false"},
      {R"({"name": "absorptionDistance", "type": "world", "value": 10})", 1,
       u"\"absorption_distance\":1000"},
      {R"({"name": "attenuationDistance", "type": "world", "value": 10})", 0.0254,
       u"\"absorption_distance\":25.4"},
      {R"({"name": "mapamountTranslucency", "type": "float", "value": 0.2})", 1,
       u"\"amt_translucency\":20,\n\"translucency_map_amount\":20"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(Written("CoronaPhysicalMtl", c.params, c.unitScale), c.expected);
}

TEST(MaterialWriters, ReflectivityBecomesAnIndexOfRefraction) {
  EXPECT_FLOAT_EQ(ReflectivityToIor(0), 1.0f);
  EXPECT_FLOAT_EQ(ReflectivityToIor(-3), 1.0f);
  EXPECT_NEAR(ReflectivityToIor(1), 1.78879f, 1e-5f);
  EXPECT_NEAR(ReflectivityToIor(12.4f), 498.0f, 1.0f);
  EXPECT_FLOAT_EQ(ReflectivityToIor(50), ReflectivityToIor(12.4f));  // capped
}

TEST(BitmapWriters, FileNamesAnglesAndPlacement) {
  EXPECT_EQ(FileNamePart(u"C:/maps/wood.jpg"), u"wood.jpg");
  EXPECT_EQ(FileNamePart(u"C:\\maps\\wood.jpg"), u"wood.jpg");
  EXPECT_EQ(FileNamePart(u"wood.jpg"), u"wood.jpg");
  EXPECT_EQ(FileNamePart(u"C:\\maps\\"), u"");
  EXPECT_EQ(Written("CoronaBitmap", R"({"name": "wAngle", "type": "angle", "value": 1.5707964})"),
            u"\"filepath\":\"\",\n\"rotate_w\":90");
  EXPECT_EQ(Written("VRayBitmap", R"({"name": "HDRIMapName", "type": "filename", "value": ""})"),
            u"");
}

TEST(MaterialRecords, MultiMaterialsAreRecognisedByIdOrName) {
  auto loaded = host::memory::LoadSceneText(R"({"format": "orvane-scene/1", "materials": [
      {"id": "a", "class": "Multimaterial", "classId": ["0x200", "0x0"]},
      {"id": "b", "class": "MyMultiSubMtl"},
      {"id": "c", "class": "MultiTexture Material"},
      {"id": "d", "class": "multi"}]})",
                                            ".");
  ASSERT_TRUE(loaded.scene) << loaded.error;
  auto is = [&](const char* id) {
    return IsMultiMaterial(*dynamic_cast<host::Mtl*>(loaded.scene->FindById(id)));
  };
  EXPECT_TRUE(is("a"));
  EXPECT_TRUE(is("b"));
  EXPECT_FALSE(is("c"));
  EXPECT_FALSE(is("d"));  // the name test is case-sensitive
}

TEST(NodeTree, IdsKeepRisingAcrossTreesAndResets) {
  auto loaded = host::memory::LoadSceneText(
      R"({"format": "orvane-scene/1", "materials": [{"id": "m", "class": "VRayMtl", "name": "M"}]})",
      ".");
  ASSERT_TRUE(loaded.scene) << loaded.error;
  WriteContext context{*loaded.scene, 0};
  NodeTreeState state;
  auto* material = dynamic_cast<host::Mtl*>(loaded.scene->FindById("m"));
  std::u16string first = WriteNodeTree(context, state, material, 0);
  std::u16string again = WriteNodeTree(context, state, material, 0);
  ResetVisitedNodes(state);
  std::u16string afterReset = WriteNodeTree(context, state, material, 0);
  EXPECT_NE(first.find(u"\"node_id\": 1"), std::u16string::npos);
  EXPECT_EQ(again, u"{ \"ref\": 1 }");
  EXPECT_NE(afterReset.find(u"\"node_id\": 2"), std::u16string::npos);
  EXPECT_EQ(WriteNodeTree(context, state, nullptr, 3), u"null");
}

// Trees written again from their templates equal trees written afresh, ids, references and
// the visited nodes included, whichever trees came between, and whether or not nodes were
// visited before (a branch kept from one tree is used in another only where none of its nodes
// was written yet). Non-ASCII names put the ids at byte offsets that differ from their places in
// the wide text; a slot found switched off is listed ahead of the children, after their ids were
// written.
TEST(NodeTree, ATreeWrittenFromItsTemplateEqualsOneWrittenAfresh) {
  auto loaded = host::memory::LoadSceneText(R"({"format": "orvane-scene/1",
    "materials": [
      {"id": "multi", "class": "Multimaterial", "name": "Multi", "subMaterials": ["a", "a", "b"]},
      {"id": "a", "class": "VRayMtl", "name": "Ä 木", "slots": [{"name": "texmap_diffuse", "map": "loop"},
                                                          {"name": "texmap_bump", "map": "loop"}]},
      {"id": "b", "class": "Foo", "name": "B",
       "params": [[{"name": "level", "type": "int", "value": 3}]]},
      {"id": "c", "class": "VRayMtl", "name": "C", "slots": [{"name": "texmap_diffuse", "map": "leaf"}]},
      {"id": "d", "class": "VRayMtl", "name": "D", "slots": [{"name": "texmap_diffuse", "map": "grain"},
                                                          {"name": "texmap_bump", "map": "leaf"}]},
      {"id": "e", "class": "VRayMtl", "name": "E", "slots": [{"name": "texmap_bump", "map": "leaf"}]},
      {"id": "f", "class": "VRayMtl", "name": "F",
       "params": [[{"name": "texmap_bump", "type": "texmap", "value": "grain"},
                   {"name": "texmapOn_bump", "type": "bool", "value": false}]],
       "slots": [{"name": "Bump", "map": "grain"}, {"name": "Diffuse", "map": "leaf"}]}],
    "maps": [{"id": "loop", "class": "Mix", "name": "Schleife 🏠", "slots": [{"name": "map1", "map": "loop"}]},
             {"id": "leaf", "class": "Mix", "name": "Leaf", "slots": [{"name": "map1", "map": "grain"}]},
             {"id": "grain", "class": "Noise", "name": "Grain"}]})",
                                            ".");
  ASSERT_TRUE(loaded.scene) << loaded.error;
  MemScene& scene = *loaded.scene;
  auto object = [&](const char* id) { return dynamic_cast<host::MtlBase*>(scene.FindById(id)); };
  const struct {
    const char* root;
    int depth;
    bool freshStart;
  } order[] = {{"multi", 2, true}, {"a", 3, true}, {"multi", 2, true}, {"b", 2, true},
               {"a", 3, false},    {"b", 2, true}, {"multi", 3, true}, {"a", 3, true},
               {"c", 2, true},     {"d", 2, true}, {"e", 2, false},    {"c", 2, false},
               {"d", 2, true},     {"f", 2, true}, {"f", 2, true}};
  TreeTemplates templates;
  WriteContext cached{scene, 0, nullptr, &templates};
  WriteContext afresh{scene, 0};
  NodeTreeState cachedState, afreshState;
  for (const auto& [root, depth, freshStart] : order) {
    if (freshStart) {
      ResetVisitedNodes(cachedState);
      ResetVisitedNodes(afreshState);
    }
    EXPECT_EQ(WriteNodeTree(cached, cachedState, object(root), depth),
              WriteNodeTree(afresh, afreshState, object(root), depth))
        << root;
    EXPECT_EQ(cachedState.nodeCounter, afreshState.nodeCounter) << root;
    EXPECT_EQ(cachedState.visited, afreshState.visited) << root;
  }
  for (auto [root, depth] : {std::pair{"multi", 2}, std::pair{"leaf", 3}}) {
    ASSERT_NE(templates.byRoot.Find({object(root), depth}), nullptr) << root;
    EXPECT_TRUE(templates.byRoot.Find({object(root), depth})->kept()) << root;
  }
}

// Whole records rendered again from their templates equal records written afresh, multi-
// materials with shared and missing sub-materials included.
TEST(NodeTree, ARecordWrittenFromItsTemplateEqualsOneWrittenAfresh) {
  auto loaded = host::memory::LoadSceneText(R"({"format": "orvane-scene/1",
    "materials": [
      {"id": "multi", "class": "Multimaterial", "name": "Mehrfach", "subMaterials": ["a", null, "a", "b"]},
      {"id": "a", "class": "VRayMtl", "name": "Ä 木", "slots": [{"name": "texmap_diffuse", "map": "loop"},
                                                          {"name": "texmap_bump", "map": "loop"}]},
      {"id": "b", "class": "Foo", "name": "B"}],
    "maps": [{"id": "loop", "class": "Mix", "name": "Loop", "slots": [{"name": "map1", "map": "loop"}]}]})",
                                            ".");
  ASSERT_TRUE(loaded.scene) << loaded.error;
  MemScene& scene = *loaded.scene;
  auto material = [&](const char* id) { return dynamic_cast<host::Mtl*>(scene.FindById(id)); };
  const char* order[] = {"multi", "a", "multi", "b", "a", "multi", "b"};
  TreeTemplates templates;
  WriteContext cached{scene, 0, nullptr, &templates};
  WriteContext afresh{scene, 0};
  NodeTreeState cachedState, afreshState;
  std::vector<std::u16string> errors;
  for (const char* id : order) {
    std::string fromTemplate, written;
    AppendMaterialRecord(cached, cachedState, material(id), errors, fromTemplate);
    AppendMaterialRecord(afresh, afreshState, material(id), errors, written);
    EXPECT_EQ(fromTemplate, written) << id;
    EXPECT_EQ(cachedState.nodeCounter, afreshState.nodeCounter) << id;
    EXPECT_EQ(cachedState.visited, afreshState.visited) << id;
  }
  ASSERT_NE(templates.byMaterial.Find(material("multi")), nullptr);
  EXPECT_TRUE(templates.byMaterial.Find(material("multi"))->kept());
}

// A map with handle 77 whose probes the scene answers with `reply`.
struct ProbedMap {
  explicit ProbedMap(const std::string& reply, const std::string& extra = "") {
    auto loaded = host::memory::LoadSceneText(
        R"({"format": "orvane-scene/1", "maps": [{"id": "t", "class": "Noise", "name": "N", "handle": 77)" +
            extra + R"(}], "scripts": [{"contains": ["getAnimByHandle 77"], "reply": )" + reply +
            "}]}",
        ".");
    EXPECT_TRUE(loaded.scene) << loaded.error;
    scene = std::move(loaded.scene);
  }
  std::u16string Output() {
    FragmentList fragments;
    AppendOutputProbe(fragments, WriteContext{*scene, 0},
                      *dynamic_cast<host::MtlBase*>(scene->FindById("t")));
    return JoinFragments(fragments, u"");
  }
  std::unique_ptr<MemScene> scene;
};

TEST(ScriptProbes, OutputRepliesAreParsedOnlyWhenWellFormed) {
  const struct {
    const char* reply;
    std::u16string expected;
  } cases[] = {
      {R"("1,0,1,0,0,0.25,2.0,1.0,0.5")",
       u"\"invert\":true,\n\"clamp\":false,\n\"alpha_from_rgb\":true,\n"
       u"\"output_enable_color_map\":false,\n\"output_rgb_color_map\":false,\n\"rgb_offset\":0.25,"
       u"\n"
       u"\"rgb_level\":2,\n\"output_amount\":1,\n\"output_bump_amount\":0.5"},
      {R"("1,0,1,0,0,0.25,2.0,1.0")", u""},        // eight fields
      {R"("1,0,1,0,0,0.25,2.0,1.0,0.5,9")", u""},  // ten fields
      {R"("ERROR:NOOUTPUT")", u""},
      {R"("")", u""},
      {"null", u""},
      {R"("true,0,0,0,0,x,-1e-05,.5,7abc")",
       u"\"invert\":false,\n\"clamp\":false,\n\"alpha_from_rgb\":false,\n"
       u"\"output_enable_color_map\":false,\n\"output_rgb_color_map\":false,\n\"rgb_offset\":0,\n"
       u"\"rgb_level\":-1e-05,\n\"output_amount\":0.5,\n\"output_bump_amount\":7"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(ProbedMap(c.reply).Output(), c.expected) << c.reply;
}

TEST(ScriptProbes, RgbCurvesAreWrittenWhenAnyIsNotTheIdentity) {
  ProbedMap map(R"("0,0,0,1,1,0.0,1.0,1.0,1.0")",
                R"(, "curves": {"rgb": [[[0, 0], [1, 1]], null, [[0, 1], [1, 0]]]})");
  std::u16string output = map.Output();
  EXPECT_NE(output.find(u"\"color_map_curve_rgb\":[[],[],[1,0.96875,"), std::u16string::npos)
      << ToUtf8(output);
  ProbedMap identity(R"("0,0,0,1,0,0.0,1.0,1.0,1.0")",
                     R"(, "curves": {"mono": [[[0, 0], [1, 1]]]})");
  EXPECT_EQ(identity.Output().find(u"color_map_curve"), std::u16string::npos);
}

TEST(ScriptProbes, PropertiesComeBackOnePerNameWithATrailingField) {
  ProbedMap map(R"("1,,")");
  auto* texmap = dynamic_cast<host::MtlBase*>(map.scene->FindById("t"));
  std::vector<std::u16string> values =
      ProbeProperties(WriteContext{*map.scene, 0}, *texmap, {u"randomizeByMeshElement", u"seed"});
  EXPECT_EQ(values, (std::vector<std::u16string>{u"1", u"", u""}));
  const std::u16string& script = map.scene->scriptsRun.back().script;
  EXPECT_EQ(script.rfind(u"(local mp = getAnimByHandle 77;if mp == undefined then "
                         u"(\"ERROR:NOTFOUND\") else (    local acc = \"\";    local v0 = "
                         u"undefined;    try ( v0 = mp.randomizeByMeshElement ) catch();",
                         0),
            0u);
  EXPECT_TRUE(ProbeProperties(WriteContext{*map.scene, 0}, *texmap, {}).empty());
}

TEST(ScriptProbes, AMapWithoutHandleOrNameIsNotProbed) {
  auto loaded = host::memory::LoadSceneText(
      R"({"format": "orvane-scene/1", "maps": [{"id": "t", "class": "Noise", "handle": 0}]})", ".");
  ASSERT_TRUE(loaded.scene);
  FragmentList fragments;
  AppendOutputProbe(fragments, WriteContext{*loaded.scene, 0},
                    *dynamic_cast<host::MtlBase*>(loaded.scene->FindById("t")));
  EXPECT_TRUE(fragments.empty());
  EXPECT_TRUE(loaded.scene->scriptsRun.empty());
}

}  // namespace
}  // namespace orvane
