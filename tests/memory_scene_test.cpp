#include "host/memory/memory_scene.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include <set>
#include "base/wide_text.h"
#include "graph/json_text.h"
#include "host/memory/scene_file.h"

namespace orvane::host::memory {
namespace {

std::unique_ptr<MemScene> Load(const std::string& body, const std::filesystem::path& folder = ".") {
  SceneLoadResult result = LoadSceneText(
      R"({"format": "orvane-scene/1")" + std::string(body.empty() ? "" : ", ") + body + "}",
      folder);
  EXPECT_TRUE(result.scene) << result.error;
  return std::move(result.scene);
}

// Rotations come apart as the host's own decomposition gives them: quaternions by the left-hand
// rule, scale signed by the handedness of the axes.
TEST(MemoryScene, TransformsDecomposeWithTheHostsConventions) {
  using host::Point3;
  constexpr float h = 0.70710678f;
  const struct {
    const char* label;
    Point3 x, y, z;
    host::Quat quat;
    Point3 scale;
  } cases[] = {
      {"identity", {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0, 1}, {1, 1, 1}},
      {"+90 about Z", {0, 1, 0}, {-1, 0, 0}, {0, 0, 1}, {0, 0, -h, h}, {1, 1, 1}},
      {"+90 about X", {1, 0, 0}, {0, 0, 1}, {0, -1, 0}, {-h, 0, 0, h}, {1, 1, 1}},
      {"180 about Y, scaled 2", {-2, 0, 0}, {0, 2, 0}, {0, 0, -2}, {0, 1, 0, 0}, {2, 2, 2}},
      {"+90 about Z, mirrored in X", {0, -1, 0}, {-1, 0, 0}, {0, 0, 1}, {0, 0, -h, h}, {-1, 1, 1}},
  };
  auto scene = Load("");
  for (const auto& c : cases) {
    host::Matrix3 tm;
    tm.rows = {c.x, c.y, c.z, Point3{1, 2, 3}};
    Point3 position, scale;
    host::Quat rotation;
    scene->DecomposeMatrix(tm, position, rotation, scale);
    EXPECT_NEAR(rotation.x, c.quat.x, 1e-6) << c.label;
    EXPECT_NEAR(rotation.y, c.quat.y, 1e-6) << c.label;
    EXPECT_NEAR(rotation.z, c.quat.z, 1e-6) << c.label;
    EXPECT_NEAR(rotation.w, c.quat.w, 1e-6) << c.label;
    EXPECT_EQ(scale, c.scale) << c.label;
    EXPECT_EQ(position, (Point3{1, 2, 3})) << c.label;
  }
  // What the package carries for a light turned +90 degrees about Z, as the host writes it.
  host::Matrix3 turned;
  turned.rows = {Point3{0, 1, 0}, Point3{-1, 0, 0}, Point3{0, 0, 1}, Point3{0, 0, 0}};
  Point3 position, scale;
  host::Quat rotation;
  scene->DecomposeMatrix(turned, position, rotation, scale);
  EXPECT_EQ(u"\"quat\":" + FormatJsonQuat(rotation), u"\"quat\":[0.707107,0,0,-0.707107]");
}

TEST(MemoryScene, ScriptsAreAnsweredByTheFirstRuleWhosePartsAllAppear) {
  auto scene = Load(R"("scripts": [
      {"contains": ["renderers.current", "bg_source"], "reply": "1|0.5,0.5,0.5|"},
      {"contains": ["renderers.current"], "fails": true},
      {"contains": ["getAnimByHandle"], "reply": null},
      {"contains": ["xxyz"], "reply": "overlapping"},
      {"contains": ["Łódź"], "reply": "wide"}])");
  const struct {
    const char16_t* script;
    bool wantResult, succeeded;
    std::optional<std::u16string> value;
  } cases[] = {
      {u"s = renderers.current.bg_source", true, true, u"1|0.5,0.5,0.5|"},
      {u"s = renderers.current.bg_source", false, true, std::nullopt},
      {u"a = renderers.current.displacement_amount", true, false, std::nullopt},
      {u"local mp = getAnimByHandle 12", true, true, std::nullopt},
      {u"unknown()", true, true, std::nullopt},
      // The part found where a shorter step would have passed it, at the very end, or not at all.
      {u"xxxyz", true, true, u"overlapping"},
      {u"xyz", true, true, std::nullopt},
      {u"a Łódź", true, true, u"wide"},
      {u"AódźAód", true, true, std::nullopt},  // 'A' shares its low byte with 'Ł'
  };
  for (const auto& c : cases) {
    ScriptResult result = scene->ExecuteMAXScriptScript(c.script, true, c.wantResult);
    EXPECT_EQ(result.succeeded, c.succeeded) << ToUtf8(c.script);
    EXPECT_EQ(result.stringValue, c.value) << ToUtf8(c.script);
  }
  ASSERT_EQ(scene->scriptsRun.size(), std::size(cases));
  EXPECT_EQ(scene->scriptsRun[1].script, u"s = renderers.current.bg_source");
  EXPECT_FALSE(scene->scriptsRun[1].wantResult);
}

TEST(MemoryScene, ExportBehavesAsTheSceneSays) {
  auto folder = std::filesystem::temp_directory_path() / "orvane-export-test";
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  std::u16string path = (folder / "scene.fbx").u16string();
  const struct {
    const char* behaviour;
    bool answer, fileWritten;
  } cases[] = {{"writes", true, true}, {"fails", false, false}, {"writesNothing", true, false}};
  for (const auto& c : cases) {
    std::filesystem::remove(folder / "scene.fbx");
    auto scene = Load(std::string(R"("export": ")") + c.behaviour + "\"");
    EXPECT_EQ(scene->ExportToFile(path, true), c.answer) << c.behaviour;
    EXPECT_EQ(scene->files.Exists(path), c.fileWritten) << c.behaviour;
    ASSERT_EQ(scene->exports.size(), 1u);
    EXPECT_EQ(scene->exports[0].succeeded, c.answer);
  }
  std::filesystem::remove_all(folder);
}

TEST(MemoryScene, ExportIntoAMissingFolderFails) {
  auto scene = Load(R"("export": "writes")");
  EXPECT_FALSE(scene->ExportToFile(u"/nonexistent-folder/x/scene.fbx", true));
}

TEST(MemoryScene, UnitScaleIsReportedInTheAskedUnits) {
  auto centimetres = Load(R"("unitScale": 0.01)");
  EXPECT_DOUBLE_EQ(centimetres->GetSystemUnitScale(UNITS_METERS), 0.01);
  EXPECT_DOUBLE_EQ(centimetres->GetSystemUnitScale(UNITS_CENTIMETERS), 1.0);
  EXPECT_DOUBLE_EQ(centimetres->GetSystemUnitScale(UNITS_MILLIMETERS), 10.0);
  auto broken = Load(R"("unitScale": 0)");
  EXPECT_EQ(broken->GetSystemUnitScale(UNITS_METERS), 0.0);
  EXPECT_DOUBLE_EQ(Load("")->GetSystemUnitScale(UNITS_METERS), 0.0254);
}

TEST(MemoryScene, FileResolutionAnswersByPathAndAssetType) {
  auto scene = Load(R"("fileResolution": [
      {"path": "lamp.ies", "assetType": "bitmap", "answer": "C:\\maps\\lamp.ies"},
      {"path": "lamp.ies", "assetType": "photometric", "answer": "C:\\ies\\lamp.ies"}])");
  IFileResolutionManager* resolver = scene->GetFileResolutionManager();
  ASSERT_NE(resolver, nullptr);
  EXPECT_EQ(resolver->GetFullFilePath(u"lamp.ies", kPhotometricAsset), u"C:\\ies\\lamp.ies");
  EXPECT_EQ(resolver->GetFullFilePath(u"lamp.ies", kBitmapAsset), u"C:\\maps\\lamp.ies");
  EXPECT_EQ(resolver->GetFullFilePath(u"other.ies", kBitmapAsset), u"");
  EXPECT_EQ(Load(R"("fileResolution": null)")->GetFileResolutionManager(), nullptr);
  EXPECT_NE(Load("")->GetFileResolutionManager(), nullptr);  // the host normally has one
}

TEST(MemoryScene, SceneFilesMapHostPathsToFilesBesideThem) {
  auto folder = std::filesystem::temp_directory_path() / "orvane-files-test";
  std::filesystem::create_directories(folder / "ies");
  std::ofstream(folder / "ies" / "lamp.ies", std::ios::binary) << "IESNA:LM-63-2002\n";
  auto scene = Load(R"("files": {"C:\\Program Files\\IES\\Lamp.ies": "ies/lamp.ies"})", folder);
  EXPECT_TRUE(scene->files.Exists(u"c:\\program files\\ies\\LAMP.IES"));
  auto bytes = scene->files.ReadBytes(u"C:\\Program Files\\IES\\Lamp.ies", 1024);
  ASSERT_TRUE(bytes);
  EXPECT_EQ(*bytes, "IESNA:LM-63-2002\n");
  EXPECT_FALSE(scene->files.ReadBytes(u"C:\\Program Files\\IES\\Lamp.ies", 4));  // too large
  EXPECT_FALSE(scene->files.Exists(u"C:\\Program Files\\IES\\other.ies"));
  std::filesystem::remove_all(folder);
}

// box ── Editable Poly under a two-modifier stack; tri ── an Editable Mesh; helper has no mesh.
constexpr char kObjects[] = R"(
  "nodes": [{"id": "box", "name": "Box", "object": "stack", "material": "m"},
            {"id": "tri", "name": "Tri", "object": "mesh"},
            {"id": "helper", "name": "Point", "object": "point"}],
  "objects": [
    {"id": "poly", "class": "Editable Poly", "superClass": "geometry",
     "mesh": {"vertices": [[0,0,0],[1,0,0],[0,1,0]], "faces": [[0,1,2,4]]}},
    {"id": "mesh", "class": "Editable Mesh", "superClass": "geometry", "triObject": true,
     "mesh": {"vertices": [[0,0,0],[1,0,0],[0,1,0]], "faces": [[0,1,2]]}},
    {"id": "point", "class": "Point", "superClass": "helper"},
    {"id": "stack", "derived": {"object": "poly", "modifiers": ["bend", "disp"]}}],
  "modifiers": [{"id": "bend", "class": "Bend"}, {"id": "disp", "class": "VRayDisplacementMod"}],
  "materials": [{"id": "m", "class": "VRayMtl", "name": "Paint"}])";

TEST(MemoryScene, NodesEvaluateThroughTheirModifierStacks) {
  auto scene = Load(kObjects);
  auto* box = dynamic_cast<INode*>(scene->FindById("box"));
  Object* reference = box->GetObjectRef();
  ASSERT_NE(reference->AsDerivedObject(), nullptr);
  EXPECT_EQ(reference->SuperClassID(), GEN_DERIVOB_CLASS_ID);
  EXPECT_EQ(reference->AsDerivedObject()->GetModifier(0)->GetClassName(), u"Bend");
  EXPECT_EQ(box->EvalWorldState(0), scene->FindById("poly"));
}

TEST(MemoryScene, ConversionToTriangleMeshesFollowsTheOwnershipRules) {
  auto scene = Load(kObjects);
  auto* poly = dynamic_cast<MemObject*>(scene->FindById("poly"));
  auto* mesh = dynamic_cast<MemObject*>(scene->FindById("mesh"));
  auto* point = dynamic_cast<MemObject*>(scene->FindById("point"));

  EXPECT_EQ(mesh->ConvertToTriObject(0), mesh);  // already a triangle mesh
  EXPECT_FALSE(point->CanConvertToTriObject());
  EXPECT_EQ(point->ConvertToTriObject(0), nullptr);

  size_t objectsBefore = scene->objects().size();
  TriObject* converted = poly->ConvertToTriObject(0);
  ASSERT_NE(converted, nullptr);
  ASSERT_NE(converted, poly);
  EXPECT_EQ(converted->GetMesh().GetFace(0).matId, 4);
  AnimHandle handle = converted->GetHandle();
  EXPECT_EQ(scene->GetAnimByHandle(handle), converted);
  converted->DeleteThis();
  EXPECT_EQ(scene->objects().size(), objectsBefore);
  EXPECT_EQ(scene->GetAnimByHandle(handle), nullptr);
}

// A converted mesh is named after the scene file's own ids, and deleting it leaves them alone,
// whether or not the file uses the converted meshes' way of naming.
TEST(MemoryScene, ConvertedMeshesNeverTakeOrDropAFilesId) {
  for (const char* fileId : {"converted-1", "converted-x", "other"}) {
    auto scene = Load(R"("nodes": [{"id": "n", "name": "N", "object": "poly"}],
      "objects": [{"id": "poly", "class": "Editable Poly", "superClass": "geometry",
                   "mesh": {"vertices": [[0,0,0],[1,0,0],[0,1,0]], "faces": [[0,1,2]]}},
                  {"id": ")" +
                      std::string(fileId) + R"(", "class": "Point", "superClass": "helper"}])");
    Animatable* fileObject = scene->FindById(fileId);
    auto* poly = dynamic_cast<MemObject*>(scene->FindById("poly"));
    dynamic_cast<INode*>(scene->FindById("n"))->SetObjectRef(poly->ConvertToTriObject(0));
    poly->ConvertToTriObject(0)->DeleteThis();
    EXPECT_EQ(scene->FindById(fileId), fileObject) << fileId;
    ASSERT_EQ(scene->objectReplacements.size(), 1u);
    EXPECT_NE(scene->objectReplacements[0].objectId, fileId);
    EXPECT_TRUE(scene->objectReplacements[0].objectId.starts_with("converted-"));
  }
}

// Ids are kept in an open-addressed table: deleting from the middle of long runs must leave
// every other id findable, and a deleted id findable no more.
TEST(MemoryScene, IdsStayFindableWhileObjectsAreDeletedAndRoomIsMade) {
  MemScene scene;
  std::vector<MemObject*> objects;
  for (int i = 0; i < 3000; ++i) {
    if (i == 1500) scene.ReserveIds(5000);
    objects.push_back(&scene.AddObject("object-" + std::to_string(i)));
  }
  for (int i = 0; i < 3000; i += 3)
    objects[static_cast<size_t>(i)]->DeleteThis();
  for (int i = 0; i < 3000; ++i) {
    Animatable* found = scene.FindById("object-" + std::to_string(i));
    if (i % 3 == 0) {
      EXPECT_EQ(found, nullptr) << i;
    } else {
      EXPECT_EQ(found, objects[static_cast<size_t>(i)]) << i;
    }
  }
  MemObject& again = scene.AddObject("object-0");
  EXPECT_EQ(scene.FindById("object-0"), &again);
  EXPECT_EQ(scene.FindById("object-3000"), nullptr);
}

TEST(MemoryScene, RecordsWhatTheCoreChanged) {
  auto scene = Load(kObjects);
  auto* box = dynamic_cast<INode*>(scene->FindById("box"));
  box->SetName(u"Box_001");
  box->GetMtl()->SetName(u"Paint_01");
  TriObject* converted = box->EvalWorldState(0)->ConvertToTriObject(0);
  box->SetObjectRef(converted);
  scene->Log(SYSLOG_WARN, u"Orvane", u"baked");

  ASSERT_EQ(scene->renames.size(), 2u);
  EXPECT_EQ(scene->renames[0].id, "box");
  EXPECT_EQ(scene->renames[0].oldName, u"Box");
  EXPECT_EQ(scene->renames[1].newName, u"Paint_01");
  ASSERT_EQ(scene->objectReplacements.size(), 1u);
  EXPECT_EQ(scene->objectReplacements[0].nodeId, "box");
  EXPECT_EQ(box->EvalWorldState(0), converted);
  ASSERT_EQ(scene->log.size(), 1u);
  EXPECT_EQ(scene->log[0].type, SYSLOG_WARN);
}

TEST(MemoryScene, AHandleOfZeroMeansNone) {
  auto scene = Load(
      R"("maps": [{"id": "a", "class": "Noise", "handle": 0}, {"id": "b", "class": "Noise"}])");
  EXPECT_EQ(scene->FindById("a")->GetHandle(), 0u);
  EXPECT_NE(scene->FindById("b")->GetHandle(), 0u);
}

TEST(MemoryScene, HandlesAreUniqueAndFoundAgain) {
  auto scene = Load(kObjects);
  std::set<AnimHandle> handles;
  for (const auto& node : scene->nodes()) {
    EXPECT_NE(node->GetHandle(), 0u);
    handles.insert(node->GetHandle());
    EXPECT_EQ(scene->GetAnimByHandle(node->GetHandle()), node.get());
  }
  for (const auto& material : scene->materials())
    handles.insert(material->GetHandle());
  EXPECT_EQ(handles.size(), scene->nodes().size() + scene->materials().size());
}

TEST(MemoryScene, KeepsTheLatestScriptRunsAndCountsThemAll) {
  MemScene scene;
  const size_t total = MemScene::kKeptScriptRuns + 5;
  for (size_t i = 0; i < total; ++i)
    scene.ExecuteMAXScriptScript(u"run " + AsciiToWide(std::to_string(i)), true, true);
  EXPECT_EQ(scene.scriptRunCount, total);
  ASSERT_EQ(scene.scriptsRun.size(), MemScene::kKeptScriptRuns);
  EXPECT_EQ(scene.scriptsRun.front().script, u"run 5");
  EXPECT_EQ(scene.scriptsRun.back().script, u"run " + AsciiToWide(std::to_string(total - 1)));
}

}  // namespace
}  // namespace orvane::host::memory
