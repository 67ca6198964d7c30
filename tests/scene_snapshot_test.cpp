// Snapshots of a scene taken through the host interface: written once they no longer change,
// they give the package and the FBX file of the scene they were taken from, and taking one
// leaves the scene alone.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <vector>

#include "cli/commands.h"
#include "host/memory/fbx_writer.h"
#include "host/memory/scene_file.h"
#include "host/memory/scene_snapshot.h"
#include "host/memory/support_snapshot.h"
#include "package/package_builder.h"
#include "tests/temp_folder.h"

namespace orvane {
namespace {

namespace fs = std::filesystem;
using host::memory::LoadSceneFile;
using host::memory::LoadSceneText;
using host::memory::MemScene;
using host::memory::SnapshotScene;
using host::memory::WriteSceneText;

// Stacks, a null world state, a camera with a target, the standard material, a bitmap with
// curves, cycles between maps, tables, references to every kind, and parameters the host would
// not give: a type the format has no name for and a value the getter refuses.
constexpr char kEverything[] = R"json({"format": "orvane-scene/1", "time": 160, "unitScale": 0.01,
  "file": {"name": "all.max", "path": "C:\\all.max"}, "settingsDirectory": "C:\\scripts",
  "environment": {"background": [0.1, 0.2, 0.3], "useMap": true, "map": "sky"},
  "nodes": [
    {"id": "box", "name": "Box", "object": "stack", "material": "multi",
     "transform": [[0, 1, 0], [-1, 0, 0], [0, 0, 2], [5, 6, 7]]},
    {"id": "child", "name": "Child", "parent": "box", "object": "mesh", "worldState": null},
    {"id": "cam", "name": "Cam", "object": "lens", "target": "aim"},
    {"id": "aim", "name": "Cam.Target", "handle": 0},
    {"id": "lamp", "name": "Lamp", "object": "emitter", "worldState": "mesh"}],
  "objects": [
    {"id": "poly", "class": "Editable Poly", "classId": ["0x1bf8338d", "0x192f6098"],
     "superClass": "geometry",
     "mesh": {"vertices": [[0, 0, 0], [1, 0, 0], [0, 1, 0]], "faces": [[0, 1, 2, 3]],
              "vertexColors": [[1, 0.5, 0]], "colorFaces": [[0, 0, 0]]}},
    {"id": "mesh", "class": "Editable Mesh", "superClass": "geometry", "triObject": true,
     "mesh": {"vertices": [[0, 0, 0], [2, 0, 0], [0, 2, 0]], "faces": [[0, 1, 2]]}},
    {"id": "stack", "derived": {"object": "poly", "modifiers": ["bend", null]}},
    {"id": "lens", "class": "Physical", "superClass": "camera",
     "camera": {"fov": 0.9, "ortho": true, "targetDistance": 200, "manualClip": true,
                "nearClip": 1, "farClip": 5000}},
    {"id": "emitter", "class": "CoronaLight", "superClass": "light",
     "params": [[{"name": "iesFile", "type": "filename", "value": "C:\\IES\\a.ies"},
                 {"name": "intensity", "type": "float_tab", "value": [1, 2.5]},
                 {"name": "lit", "type": "node_tab", "value": ["box", "aim", null]},
                 {"name": "on", "type": "bool", "value": 2},
                 {"name": null, "type": "matrix3", "value": [[1,0,0],[0,1,0],[0,0,1],[0,0,0]]},
                 {"name": "anim", "type": 12, "value": null},
                 {"name": "refused", "type": 0, "value": null},
                 {"name": "any", "type": "reftarg_tab", "value": ["stack", "bend", "poly"]}],
                null]}],
  "modifiers": [{"id": "bend", "class": "Bend", "params": [[{"name": "angle", "type": "angle",
                                                            "value": "nan"}]]}],
  "materials": [
    {"id": "multi", "class": "Multimaterial", "classId": ["0x200", "0x0"], "name": "Multi",
     "subMaterials": ["std", null, "std"]},
    {"id": "std", "class": "Standard", "name": "Std",
     "standard": {"diffuse": [0.5, 0.5, 0.5], "specular": [1, 1, 1], "filter": [0, 0, 0],
                  "shininess": 0.25, "shininessStrength": 0.1, "opacity": 0.75,
                  "selfIllum": 0, "ior": 1.6, "twoSided": true, "wire": false},
     "slots": [{"name": "Diffuse Color", "map": "wood", "amount": 0.5},
               {"name": "Bump", "map": null, "enabled": false}]}],
  "maps": [
    {"id": "wood", "class": "Bitmap", "classId": ["0x240", "0x0"], "name": "Wood",
     "bitmap": {"mapName": "C:\\maps\\wood.png", "loadedGamma": 2.2,
                "uvGen": {"uScale": 2, "vScale": 3, "uOffset": 0.1, "vOffset": 0.2,
                          "wAngle": 0.5, "tiling": 5, "mapChannel": 2}},
     "curves": {"mono": [[[0, 0], [0.3, 0.7], [1, 1]]], "rgb": [null, [[0, 1], [1, 0]]]},
     "slots": [{"name": "back", "map": "mix"}]},
    {"id": "mix", "class": "Mix", "name": "Mix",
     "params": [[{"name": "map1", "type": "texmap", "value": "wood"},
                 {"name": "owner", "type": "mtl", "value": "std"},
                 {"name": "file", "type": "string_tab", "value": ["C:\\maps\\mix.jpg", null]}]]},
    {"id": "sky", "class": "Bitmap", "name": "Sky",
     "bitmap": {"mapName": "C:\\maps\\sky.hdr", "loadedGamma": null, "uvGen": null}}],
  "fileResolution": [
    {"path": "C:\\maps\\wood.png", "assetType": "bitmap", "answer": "D:\\found\\wood.png"},
    {"path": "C:\\IES\\a.ies", "assetType": "photometric", "answer": "D:\\ies\\a.ies"},
    {"path": "C:\\never\\named.png", "assetType": "bitmap", "answer": "D:\\named.png"}]})json";

std::unique_ptr<MemScene> Load(std::string_view text) {
  auto loaded = LoadSceneText(text, ".");
  EXPECT_TRUE(loaded.scene) << loaded.error;
  return std::move(loaded.scene);
}

std::string SnapshotText(MemScene& scene) {
  return WriteSceneText(*SnapshotScene(scene));
}

// Every scene the tests and examples bring, and one generated scene.
std::vector<fs::path> Scenes(const fs::path& scratch) {
  std::vector<fs::path> scenes;
  for (const fs::path& folder :
       {fs::path(ORVANE_SOURCE_DIR) / "examples", fs::path(ORVANE_TEST_DATA) / "packages"}) {
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
      if (entry.path().string().ends_with(".scene.json")) scenes.push_back(entry.path());
    }
  }
  fs::path generated = scratch / "generated.scene.json";
  std::ostringstream out, err;
  EXPECT_EQ(cli::RunOrvane(
                {"scene", "generate", "--objects", "300", "--seed", "7", "-o", generated.string()},
                out, err),
            0)
      << err.str();
  scenes.push_back(generated);
  return scenes;
}

// The scene with every feature, then the texts of all the others.
std::vector<std::string> SceneTexts(const fs::path& scratch) {
  std::vector<std::string> texts{kEverything};
  for (const fs::path& scene : Scenes(scratch))
    texts.push_back(testing::FileContents(scene));
  return texts;
}

TEST(SceneSnapshot, IsWrittenTheSameOnceWrittenOnce) {
  testing::TempFolder scratch("orvane-snapshot");
  for (const std::string& text : SceneTexts(scratch.path)) {
    std::unique_ptr<MemScene> original = Load(text);
    ASSERT_TRUE(original);
    std::string once = SnapshotText(*original);
    std::unique_ptr<MemScene> reloaded = Load(once);
    ASSERT_TRUE(reloaded) << once;
    EXPECT_EQ(SnapshotText(*reloaded), once);
  }
}

constexpr const char* kLists[] = {"nodes", "objects", "modifiers", "materials", "maps"};

// Calls `visit` on every member of `scene` that names an id.
void ForEachReference(nlohmann::json& scene, const std::function<void(nlohmann::json&)>& visit) {
  auto each = [&](nlohmann::json& list) {
    for (auto& item : list)
      visit(item);
  };
  visit(scene["environment"]["map"]);
  for (auto& node : scene["nodes"]) {
    for (const char* key : {"parent", "object", "worldState", "material", "target"})
      if (node.contains(key)) visit(node[key]);
  }
  for (auto& object : scene["objects"]) {
    if (object.contains("derived")) {
      visit(object["derived"]["object"]);
      each(object["derived"]["modifiers"]);
    }
  }
  for (auto& material : scene["materials"])
    if (material.contains("subMaterials")) each(material["subMaterials"]);
  for (const char* list : kLists) {
    for (auto& item : scene[list]) {
      if (item.contains("slots"))
        for (auto& slot : item["slots"])
          visit(slot["map"]);
      if (!item.contains("params")) continue;
      for (auto& block : item["params"]) {
        if (block.is_null()) continue;
        for (auto& param : block) {
          std::string type = param["type"].is_string() ? param["type"].get<std::string>() : "";
          bool table = type.ends_with("_tab");
          std::string base = table ? type.substr(0, type.size() - 4) : type;
          if (base != "mtl" && base != "texmap" && base != "node" && base != "reftarg") continue;
          table ? each(param["value"]) : visit(param["value"]);
        }
      }
    }
  }
}

// A scene file with its ids replaced by the handles they stand for and its lists in handle
// order, without what a snapshot records differently by design: script rules, curves (sampled),
// file resolution (only for named paths), local files, the export's behaviour, a null world
// state of a node without an object (it evaluates to nothing either way), and materials and
// maps that nothing leads to (a send's snapshot adds those the core finds by handle).
nlohmann::json Comparable(const std::string& text) {
  nlohmann::json scene = nlohmann::json::parse(text);
  for (const char* key : {"scripts", "fileResolution", "files", "export"})
    scene.erase(key);
  std::set<std::string> referenced;
  ForEachReference(scene, [&](nlohmann::json& id) {
    if (id.is_string()) referenced.insert(id.get<std::string>());
  });
  for (const char* list : {"materials", "maps"}) {
    nlohmann::json kept = nlohmann::json::array();
    for (auto& item : scene[list])
      if (referenced.count(item["id"].get<std::string>()) != 0) kept.push_back(item);
    scene[list] = kept;
  }
  std::map<std::string, nlohmann::json> handleOf;
  for (const char* list : kLists) {
    for (auto& item : scene[list]) {
      handleOf[item["id"].get<std::string>()] = item["handle"];
      item.erase("id");
      item.erase("curves");
      if (!item.contains("object") && item.value("worldState", nlohmann::json(0)).is_null())
        item.erase("worldState");
    }
  }
  ForEachReference(scene, [&](nlohmann::json& id) {
    if (id.is_string()) id = handleOf.at(id.get<std::string>());
  });
  for (const char* list : kLists) {
    std::stable_sort(scene[list].begin(), scene[list].end(),
                     [](const auto& a, const auto& b) { return a["handle"] < b["handle"]; });
  }
  return scene;
}

TEST(SceneSnapshot, HoldsWhatTheSceneFileHeld) {
  testing::TempFolder scratch("orvane-snapshot");
  for (const std::string& text : SceneTexts(scratch.path)) {
    std::unique_ptr<MemScene> original = Load(text);
    ASSERT_TRUE(original);
    nlohmann::json held = Comparable(WriteSceneText(*original));
    EXPECT_EQ(nlohmann::json::diff(held, Comparable(SnapshotText(*original))),
              nlohmann::json::array())
        << text.substr(0, 200);
  }
}

// What the comparison above leaves out: curves and the resolver's answers.
TEST(SceneSnapshot, KeepsCurvesAtTheCoresSamplesAndAnswersForTheNamedPaths) {
  std::unique_ptr<MemScene> original = Load(kEverything);
  std::unique_ptr<MemScene> snapshot = SnapshotScene(*original);

  ASSERT_TRUE(snapshot->fileResolution);
  ASSERT_EQ(snapshot->fileResolution->size(), 2u);
  EXPECT_EQ((*snapshot->fileResolution)[0].answer, u"D:\\found\\wood.png");
  EXPECT_EQ((*snapshot->fileResolution)[1].answer, u"D:\\ies\\a.ies");
  std::string unavailable = R"({"format": "orvane-scene/1", "fileResolution": null})";
  EXPECT_FALSE(SnapshotScene(*Load(unavailable))->fileResolution.has_value());

  const auto& wood = *snapshot->maps().front();
  const auto& originalWood = *original->maps().front();
  ASSERT_EQ(wood.GetName(), u"Wood");
  for (bool rgb : {false, true}) {
    const host::ICurveCtl& mine = *wood.GetColorMapCurveCtl(rgb);
    const host::ICurveCtl& theirs = *originalWood.GetColorMapCurveCtl(rgb);
    ASSERT_EQ(mine.GetNumCurves(), theirs.GetNumCurves());
    for (int c = 0; c < mine.GetNumCurves(); ++c) {
      ASSERT_EQ(mine.GetControlCurve(c) == nullptr, theirs.GetControlCurve(c) == nullptr);
      for (int i = 0; mine.GetControlCurve(c) != nullptr && i < host::kCurveSampleCount; ++i) {
        float x = host::CurveSampleX(i);
        EXPECT_EQ(mine.GetControlCurve(c)->GetValue(0, x),
                  theirs.GetControlCurve(c)->GetValue(0, x));
      }
    }
  }
}

TEST(SceneSnapshot, LeavesTheSceneAsItWas) {
  std::unique_ptr<MemScene> scene = Load(kEverything);
  std::string before = WriteSceneText(*scene);
  SnapshotScene(*scene);
  EXPECT_EQ(WriteSceneText(*scene), before);
  EXPECT_TRUE(scene->renames.empty());
  EXPECT_TRUE(scene->objectReplacements.empty());
  EXPECT_EQ(scene->scriptRunCount, 0u);
}

struct Built {
  std::string package, log, fbx;
};

Built BuildAll(host::Interface& scene, MemScene& exported, host::FileSystem& files,
               const fs::path& folder) {
  NodeTreeState trees;
  fs::path document = folder / "1.json";
  BuildResult result =
      BuildPackage(WriteContext{scene, scene.GetTime()}, files, trees, document.u16string());
  EXPECT_TRUE(result.success);
  return {testing::FileContents(document), testing::FileContents(folder / "1.log"),
          host::memory::WriteFbx(exported)};
}

// The way support gets a snapshot: the send runs on the recorder, which copies the scene and
// keeps the answers to every script, probes included.
TEST(SceneSnapshot, ReplaysToTheSamePackageAndFbx) {
  testing::TempFolder scratch("orvane-replay");
  for (const fs::path& path : Scenes(scratch.path)) {
    SCOPED_TRACE(path.string());
    auto loaded = LoadSceneFile(path);
    ASSERT_TRUE(loaded.scene) << loaded.error;
    MemScene& original = *loaded.scene;
    fs::create_directories(scratch.path / "first");
    host::memory::SupportSnapshot recorder(original, original.files,
                                           (scratch.path / "snapshots").u16string(), u'/');
    recorder.SceneReady();
    Built first = BuildAll(recorder, original, original.files, scratch.path / "first");
    recorder.SendEnded(u"job");

    auto replayed = LoadSceneFile(scratch.path / "snapshots" / "job.scene.json");
    ASSERT_TRUE(replayed.scene) << replayed.error;
    fs::create_directories(scratch.path / "again");
    // Files the scene names are read where the user's machine has them.
    Built again =
        BuildAll(*replayed.scene, *replayed.scene, original.files, scratch.path / "again");
    EXPECT_EQ(again.package, first.package);
    EXPECT_EQ(again.log, first.log);
    EXPECT_EQ(again.fbx, first.fbx);
  }
}

}  // namespace
}  // namespace orvane
