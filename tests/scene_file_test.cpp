#include "host/memory/scene_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "graph/param_lookup.h"
#include "host/memory/scene_file_json.h"

namespace orvane::host::memory {
namespace {

TEST(SceneFile, BrokenFilesAreRejectedWithThePlaceOfTheFault) {
  const struct {
    const char* label;
    std::string text;
    std::string error;
  } cases[] = {
      {"not JSON", "{\"format\": ",
       "parse error at line 1, column 12: syntax error while parsing value - unexpected end of "
       "input; expected '[', '{', or a literal"},
      {"top level not an object", "[]", "expected an object"},
      {"duplicate top-level key", R"({"format": "orvane-scene/1", "format": "orvane-scene/1"})",
       "format: duplicate key"},
      {"duplicate key deep inside",
       R"({"format": "orvane-scene/1", "nodes": [{"id": "a"}, {"id": "b", "name": "x", "name": "y"}]})",
       "nodes[1].name: duplicate key"},
      {"duplicate key behind a fault the loader meets first",
       R"({"format": "orvane-scene/1", "nodes": [{"id": "a", "material": "m9"}], "maps": [{"id": "t", "class": "Bitmap", "name": "x", "name": "y"}]})",
       "maps[0].name: duplicate key"},
      {"duplicate key after nested arrays",
       R"({"format": "orvane-scene/1", "objects": [{"id": "o", "class": "Box", "superClass": "geometry", "mesh": {"vertices": [[0,0,0],[1,0,0]], "vertices": []}}]})",
       "objects[0].mesh.vertices: duplicate key"},
      {"text after a NUL byte", std::string("{\"format\": \"orvane-scene/1\"}\0garbage", 37),
       "parse error at line 1, column 29: a NUL byte, which JSON text cannot contain"},
      {"NUL byte on a later line", std::string("{\"format\":\n \0\"orvane-scene/1\"}", 30),
       "parse error at line 2, column 2: a NUL byte, which JSON text cannot contain"},
      {"NUL byte inside a string", std::string("{\"format\": \"orvane\0-scene/1\"}", 29),
       "parse error at line 1, column 19: a NUL byte, which JSON text cannot contain"},
      {"missing format", "{}", "missing key \"format\""},
      {"other format", R"({"format": "orvane-scene/2"})",
       "format: unsupported format \"orvane-scene/2\" (expected \"orvane-scene/1\")"},
      {"unknown top-level key", R"({"format": "orvane-scene/1", "lights": []})",
       "lights: unknown key"},
      {"unknown nested key", R"({"format": "orvane-scene/1", "nodes": [{"id": "n", "colour": 1}]})",
       "nodes[0].colour: unknown key"},
      {"missing id", R"({"format": "orvane-scene/1", "nodes": [{"name": "Box"}]})",
       "nodes[0]: missing key \"id\""},
      {"empty id", R"({"format": "orvane-scene/1", "maps": [{"id": "", "class": "Bitmap"}]})",
       "maps[0].id: an id must not be empty"},
      {"duplicate id across lists",
       R"({"format": "orvane-scene/1", "nodes": [{"id": "x"}], "materials": [{"id": "x", "class": "VRayMtl"}]})",
       "materials[0].id: duplicate id \"x\" (first used at nodes[0].id)"},
      {"dangling material",
       R"({"format": "orvane-scene/1", "nodes": [{"id": "a"}, {"id": "b"}, {"id": "c"}, {"id": "d", "material": "m9"}]})",
       "nodes[3].material: no material with id \"m9\""},
      {"faults in a material and in a node",
       R"({"format": "orvane-scene/1", "materials": [{"id": "m", "class": "VRayMtl", "subMaterials": ["x"]}], "nodes": [{"id": "a", "material": "y"}]})",
       "nodes[0].material: no material with id \"y\""},
      {"reference of the wrong kind",
       R"({"format": "orvane-scene/1", "nodes": [{"id": "a", "material": "a"}]})",
       "nodes[0].material: no material with id \"a\""},
      {"wrong value type", R"({"format": "orvane-scene/1", "nodes": [{"id": "a", "name": 5}]})",
       "nodes[0].name: expected a string"},
      {"hierarchy cycle",
       R"({"format": "orvane-scene/1", "nodes": [{"id": "a", "parent": "b"}, {"id": "b", "parent": "a"}]})",
       "nodes[0].parent: the node hierarchy has a cycle through \"a\""},
      {"node that is its own parent",
       R"({"format": "orvane-scene/1", "nodes": [{"id": "a", "parent": "a"}]})",
       "nodes[0].parent: the node hierarchy has a cycle through \"a\""},
      {"modifier stack cycle",
       R"({"format": "orvane-scene/1", "objects": [{"id": "d1", "derived": {"object": "d2"}}, {"id": "d2", "derived": {"object": "d1"}}]})",
       "objects[0].derived: the modifier stack has a cycle through \"d1\""},
      {"duplicate handle",
       R"({"format": "orvane-scene/1", "nodes": [{"id": "a", "handle": 7}], "maps": [{"id": "t", "class": "Bitmap", "handle": 7}]})",
       "maps[0].handle: duplicate handle 7 (first used at nodes[0].handle)"},
      {"object without super class",
       R"({"format": "orvane-scene/1", "objects": [{"id": "o", "class": "Box"}]})",
       "objects[0]: missing key \"superClass\""},
      {"unknown super class",
       R"({"format": "orvane-scene/1", "objects": [{"id": "o", "class": "Box", "superClass": "mesh"}]})",
       "objects[0].superClass: unknown super class \"mesh\""},
      {"face index out of range",
       R"({"format": "orvane-scene/1", "objects": [{"id": "o", "class": "Box", "superClass": "geometry", "mesh": {"vertices": [[0,0,0],[1,0,0],[0,1,0]], "faces": [[0,1,3]]}}]})",
       "objects[0].mesh.faces[0][2]: vertex index 3 is out of range (3 vertices)"},
      {"unknown parameter type",
       R"({"format": "orvane-scene/1", "materials": [{"id": "m", "class": "CoronaPhysicalMtl", "params": [[{"name": "x", "type": "double", "value": 1}]]}]})",
       "materials[0].params[0][0].type: unknown parameter type \"double\""},
      {"parameter value of the wrong shape",
       R"({"format": "orvane-scene/1", "materials": [{"id": "m", "class": "CoronaPhysicalMtl", "params": [[{"name": "baseColor", "type": "rgba", "value": [1, 0]}]]}]})",
       "materials[0].params[0][0].value: expected an array of 3 numbers"},
      {"dangling map in a parameter",
       R"({"format": "orvane-scene/1", "materials": [{"id": "m", "class": "CoronaPhysicalMtl", "params": [null, [{"name": "baseTexmap", "type": "texmap", "value": "t1"}]]}]})",
       "materials[0].params[1][0].value: no map with id \"t1\""},
      {"table value not an array",
       R"({"format": "orvane-scene/1", "maps": [{"id": "t", "class": "MultiTexture", "params": [[{"name": "submap_on", "type": "bool_tab", "value": true}]]}]})",
       "maps[0].params[0][0].value: expected an array"},
      {"number beyond any JSON number", R"({"format": "orvane-scene/1", "unitScale": -1e999})",
       "number overflow parsing '-1e999'"},
      {"float beyond float range",
       R"({"format": "orvane-scene/1", "environment": {"background": [1e39, 0, 0]}})",
       "environment.background[0]: out of range"},
      {"integer out of range", R"({"format": "orvane-scene/1", "time": 4294967296})",
       "time: out of range"},
      {"script rule without reply",
       R"({"format": "orvane-scene/1", "scripts": [{"contains": ["x"]}]})",
       "scripts[0]: missing key \"reply\" (or \"fails\": true)"},
      {"bad export behaviour", R"({"format": "orvane-scene/1", "export": "sometimes"})",
       "export: unknown export behaviour \"sometimes\""},
      {"curve out of order",
       R"({"format": "orvane-scene/1", "maps": [{"id": "t", "class": "Output", "curves": {"mono": [[[0.5, 0], [0.25, 1]]]}}]})",
       "maps[0].curves.mono[0][1][0]: curve points must be in ascending x"},
  };
  for (const auto& c : cases) {
    SceneLoadResult result = LoadSceneText(c.text, ".");
    EXPECT_EQ(result.scene, nullptr) << c.label;
    EXPECT_EQ(result.error, c.error) << c.label;
  }
}

// Long lists are read in parts, by more than one thread: of several faults, the first in the
// order the lists are read is the one reported, however the parts were shared out.
TEST(SceneFile, OfManyFaultsInLongListsTheFirstIsReported) {
  std::string text = R"({"format": "orvane-scene/1", "objects": [)";
  for (int i = 0; i < 3000; ++i) {
    const char* superClass = i == 700 || i == 2900 ? "mesh" : "geometry";
    text += (i ? ", " : "") + std::string(R"({"id": "o)") + std::to_string(i) +
            R"(", "class": "Box", "superClass": ")" + superClass + R"("})";
  }
  text += R"(], "maps": [{"id": "t", "class": "Bitmap", "name": 5}]})";
  for (int attempt = 0; attempt < 10; ++attempt) {
    SceneLoadResult result = LoadSceneText(text, ".");
    EXPECT_EQ(result.error, "objects[700].superClass: unknown super class \"mesh\"") << attempt;
  }
}

// A scene that uses every part of the format, written to survive a round trip unchanged.
constexpr char kFullScene[] = R"json({
  "format": "orvane-scene/1",
  "time": 160,
  "unitScale": 0.01,
  "file": {"name": "room.max", "path": "C:\\scenes\\room.max"},
  "settingsDirectory": "C:\\Users\\me\\plugcfg",
  "environment": {"background": [0.1, 0.2, 0.3], "useMap": true, "map": "sky"},
  "nodes": [
    {"id": "box", "name": "Box", "object": "stack", "material": "multi", "handle": 500},
    {"id": "lamp", "name": "Lamp", "parent": "box", "object": "light", "target": "aim",
     "transform": [[1, 0, 0], [0, 0, 1], [0, -1, 0], [10, 20, 30]]},
    {"id": "aim", "name": "Lamp.Target", "worldState": null},
    {"id": "cam", "name": "Camera", "object": "camera"}
  ],
  "objects": [
    {"id": "mesh", "class": "Editable Poly", "classId": ["0x1BF8338D", "0x192F6098"], "superClass": "geometry",
     "mesh": {"vertices": [[0, 0, 0], [1, 0, 0], [0, 1, 0], [1, 1, 0]], "faces": [[0, 1, 2, 2], [1, 3, 2]]}},
    {"id": "light", "class": "CoronaLight", "superClass": "light",
     "params": [[{"name": "iesFile", "type": "filename", "value": "lamp.ies"},
                 {"name": "width", "type": "world", "value": 100},
                 {"name": "on", "type": "bool", "value": 2}]]},
    {"id": "camera", "class": "Physical", "superClass": "camera",
     "camera": {"fov": 0.9, "ortho": false, "targetDistance": 250, "manualClip": true, "nearClip": 1, "farClip": 5000}},
    {"id": "stack", "derived": {"object": "mesh", "modifiers": ["disp", "uvw"]}}
  ],
  "modifiers": [
    {"id": "disp", "class": "CoronaDisplacementMod", "params": [[{"name": "maxDisplace", "type": "world", "value": 2.5}]]},
    {"id": "uvw", "class": "Uvwmap"}
  ],
  "materials": [
    {"id": "multi", "class": "Multimaterial", "classId": ["0x200", "0x0"], "name": "Mix", "subMaterials": ["floor", null, "std"]},
    {"id": "floor", "class": "CoronaPhysicalMtl", "name": "Floor \"oak\"",
     "params": [[{"name": "baseColor", "type": "rgba", "value": [0.8, "nan", 0.2]},
                 {"name": null, "type": "float", "value": "-inf"},
                 {"name": "baseTexmap", "type": "texmap", "value": "wood"},
                 {"name": "layersOn", "type": "bool_tab", "value": [true, false, 3]},
                 {"name": "label", "type": "string", "value": null},
                 {"name": "tm", "type": "matrix3", "value": [[1, 0, 0], [0, 1, 0], [0, 0, 1], [0, 0, 0]]},
                 {"name": "pic", "type": "bitmap", "value": null}]],
     "slots": [{"name": "baseTexmap", "map": "wood"}, {"name": "bump", "map": null}]},
    {"id": "std", "class": "Standard (Legacy)", "name": "Old",
     "standard": {"diffuse": [0.5, 0.5, 0.5], "shininess": 0.25, "twoSided": true},
     "slots": [{"name": "Diffuse Color", "map": "wood", "amount": 0.75, "enabled": false}]}
  ],
  "maps": [
    {"id": "wood", "class": "Bitmap", "classId": ["0x240", "0x0"], "name": "Wood", "handle": 42,
     "bitmap": {"mapName": "C:\\maps\\wood.jpg", "loadedGamma": 2.2,
                "uvGen": {"uScale": 2, "vScale": 3, "uOffset": 0.1, "vOffset": 0, "wAngle": 1.5707964, "tiling": 5, "mapChannel": 2}},
     "curves": {"mono": [[[0, 0], [0.5, 0.8], [1, 1]]], "rgb": [[[0, 0], [1, 1]], null, [[0, 1], [1, 0]]]}},
    {"id": "sky", "class": "CoronaSky", "name": "Sky"}
  ],
  "scripts": [
    {"contains": ["colorPipelineMgr"], "reply": "sRGB|ACEScg|2.2"},
    {"contains": ["renderers.current", "displacement"], "fails": true},
    {"contains": [], "reply": null}
  ],
  "fileResolution": [{"path": "lamp.ies", "assetType": "photometric", "answer": "C:\\ies\\lamp.ies"}],
  "files": {"C:\\ies\\lamp.ies": "lamp.ies"},
  "export": "writesNothing"
})json";

// Texts where a fast parser and nlohmann could differ: both parses give one result.
TEST(SceneFile, TheFastParseAgreesWithNlohmannsOwn) {
  // One text per row, so that a failing row is found by its line.
  // clang-format off
  const char* texts[] = {"[-0]",
                         "[-0.0]",
                         "[0]",
                         "[-1e-400]",
                         "[1e309]",
                         "[1E400]",
                         "[18446744073709551615]",
                         "[18446744073709551616]",
                         "[9223372036854775808]",
                         "[-9223372036854775809]",
                         "[01]",
                         "[1.5e3]",
                         "[0.1234567890123456789012345]",
                         "[555555555555555555555555.5]",
                         "[-12345678901234567890]",
                         "[1e-320]",
                         "[1E+2, -0.5e-2]",
                         R"(["\ud800"])",
                         R"(["\udc00x"])",
                         R"(["\ud83d\ude00"])",
                         R"(["\u0000"])",
                         "\xEF\xBB\xBF{}",
                         R"({"a": 1, "a": 2})",
                         R"({"a": {"b": 1}, "b": [true, null]})",
                         "[\"\xC3\x28\"]",
                         "[\"\xF0\x9F\x98\x80\"]",
                         "{} x",
                         "",
                         " ",
                         "[1,]",
                         "[\"a\tb\"]",
                         // A parse that reads values only as they are asked for must still
                         // refuse broken structure anywhere, and text after the root.
                         "[1 2]",
                         R"({"a" 1})",
                         R"({"a": 1 "b": 2})",
                         R"({"a": [1, 2}})",
                         R"({"a": })",
                         "[,1]",
                         R"({,"a": 1})",
                         "[[1]]]",
                         R"({"a": 1}})",
                         "[tru]",
                         "[truex]",
                         "[nul]",
                         "[nulll]",
                         "[1x]",
                         "[1.]",
                         R"(["\x"])",
                         R"([{"a": 1, "a": 2}])",
                         R"({"k": {"a": 0, "b": 1, "c": 2, "d": 3, "e": 4, "f": 5, "g": 6,
                             "h": 7, "i": 8, "j": 9, "k": 10, "l": 11, "m": 12, "n": 13, "o": 14,
                             "p": 15, "q": 16, "b": 17}})",
                         "1",
                         "\"text\"",
                         "[] []"};
  // clang-format on
  auto outcome = [](auto parse, std::string_view text) -> std::optional<JsonDocument> {
    try {
      return parse(text);
    } catch (const SceneFileError&) {
    }
    return std::nullopt;
  };
  for (const char* text : texts) {
    auto fast = outcome([](std::string_view json) { return ParseStrictly(json); }, text);
    auto portable = outcome(ParseStrictlyWithNlohmann, text);
    ASSERT_EQ(fast.has_value(), portable.has_value()) << text;
    if (fast) {
      EXPECT_EQ(fast->root(), portable->root()) << text;
    }
  }
}

TEST(SceneFile, WritingALoadedSceneAndLoadingItAgainGivesTheSameScene) {
  SceneLoadResult first = LoadSceneText(kFullScene, ".");
  ASSERT_TRUE(first.scene) << first.error;
  std::string written = WriteSceneText(*first.scene);
  SceneLoadResult second = LoadSceneText(written, ".");
  ASSERT_TRUE(second.scene) << second.error << "\n" << written;
  EXPECT_EQ(WriteSceneText(*second.scene), written);

  // Spot checks that the text describes the same scene, not just a stable one.
  MemScene& scene = *second.scene;
  EXPECT_EQ(scene.GetTime(), 160);
  EXPECT_EQ(scene.GetAnimByHandle(42), scene.FindById("wood"));
  EXPECT_EQ(scene.GetAnimByHandle(500), scene.FindById("box"));
  auto* floor = dynamic_cast<Mtl*>(scene.FindById("floor"));
  ASSERT_NE(floor, nullptr);
  EXPECT_EQ(floor->GetName(), u"Floor \"oak\"");
  ParamValue layer = FindParamTabValue(floor, u"layersOn", 2, 0);
  EXPECT_EQ(layer.kind, ParamKind::kBool);
  EXPECT_TRUE(layer.boolValue);
  EXPECT_NE(written.find("\"nan\""), std::string::npos);
  EXPECT_NE(written.find("\"-inf\""), std::string::npos);
  EXPECT_NE(written.find("0.8"), std::string::npos);
  EXPECT_EQ(written.find("0.800000"), std::string::npos);
}

TEST(SceneFile, ChangesMadeThroughTheHostAreWrittenBack) {
  SceneLoadResult loaded = LoadSceneText(kFullScene, ".");
  ASSERT_TRUE(loaded.scene) << loaded.error;
  MemScene& scene = *loaded.scene;
  auto* box = dynamic_cast<INode*>(scene.FindById("box"));
  box->SetName(u"Box_001");
  TriObject* mesh = box->EvalWorldState(0)->ConvertToTriObject(0);
  mesh->GetMesh().SetNumVertCol(1);
  mesh->GetMesh().SetVertCol(0, {0.5f, 0.5f, 0.5f});
  box->SetObjectRef(mesh);

  SceneLoadResult reloaded = LoadSceneText(WriteSceneText(scene), ".");
  ASSERT_TRUE(reloaded.scene) << reloaded.error;
  auto* reloadedBox = dynamic_cast<INode*>(reloaded.scene->FindById("box"));
  EXPECT_EQ(reloadedBox->GetName(), u"Box_001");
  auto* reloadedMesh = dynamic_cast<MemObject*>(reloadedBox->EvalWorldState(0));
  ASSERT_NE(reloadedMesh, nullptr);
  EXPECT_TRUE(reloadedMesh->isTriObject);
  EXPECT_EQ(reloadedMesh->mesh->vertexColors.size(), 1u);
}

TEST(SceneFile, BundledExamplesLoad) {
  int found = 0;
  for (const auto& entry :
       std::filesystem::recursive_directory_iterator(ORVANE_SOURCE_DIR "/examples")) {
    if (entry.path().string().ends_with(".scene.json")) {
      ++found;
      SceneLoadResult result = LoadSceneFile(entry.path());
      EXPECT_TRUE(result.scene) << result.error;
    }
  }
  EXPECT_GE(found, 2);
}

}  // namespace
}  // namespace orvane::host::memory
