// `orvane scene generate`: large, realistic scene files for benchmarks and tests.
#include <fstream>
#include <ostream>
#include <random>

#include "base/wide_text.h"
#include "cli/commands.h"
#include "cli/flags.h"
#include "cli/output_folder.h"
#include "host/memory/scene_file.h"

namespace orvane::cli {

namespace {

using namespace host;
using namespace host::memory;

class Generator {
 public:
  explicit Generator(unsigned seed) : random_(seed) {}

  std::unique_ptr<MemScene> Generate(int objects, int materials, int lights, int cameras) {
    scene_ = std::make_unique<MemScene>();
    scene_->metresPerUnit = 0.01;
    scene_->fileName = u"generated.max";
    scene_->filePath = u"C:\\scenes\\generated.max";
    scene_->scriptRules.push_back({{u"colorPipelineMgr"}, false, u"OCIO|ACEScg|2.2"});
    scene_->scriptRules.push_back({{u"displacement_amount"}, false, u"1.0|true"});
    MakeMaps(std::max(1, materials / 2));
    for (int i = 0; i < materials; ++i)
      MakeMaterial(i);
    MakeGeometry(objects);
    MakeLights(lights);
    MakeCameras(cameras);
    scene_->AssignMissingHandles();
    return std::move(scene_);
  }

 private:
  int Pick(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }
  float Unit() { return static_cast<float>(random_() % 1000) / 1000.0f; }

  static void Block(AnimatableData& data, std::vector<MemParam> params) {
    auto block = std::make_unique<MemParamBlock>();
    block->params = std::move(params);
    data.blocks.push_back(std::move(block));
  }
  static MemParam Float(std::u16string name, float value) {
    return {std::move(name), TYPE_FLOAT, {value}};
  }
  static MemParam Colour(std::u16string name, Color value) {
    return {std::move(name), TYPE_FRGBA, {value}};
  }
  static std::u16string Number(int i) {
    std::string text = std::to_string(i);
    return std::u16string(text.begin(), text.end());
  }

  void MakeMaps(int count) {
    for (int i = 0; i < count; ++i) {
      MemTexmap& map = scene_->AddMap("map" + std::to_string(i));
      bool corona = i % 3 != 0;
      map.data.className = corona ? u"CoronaBitmap" : u"VRayBitmap";
      map.name = u"texture " + Number(i);
      std::u16string path = u"C:\\textures\\tex" + Number(i % 500) + u".jpg";
      Block(map.data,
            {{corona ? u"filename" : u"HDRIMapName", TYPE_FILENAME, {std::optional(path)}},
             {u"uvwScale", TYPE_POINT3, {Point3{2, 2, 1}}},
             Float(u"gamma", 2.2f)});
      maps_.push_back(&map);
    }
  }

  void MakeMaterial(int i) {
    static const std::u16string kClasses[] = {u"CoronaPhysicalMtl", u"VRayMtl", u"PhysicalMaterial",
                                              u"Standard (Legacy)"};
    MemMtl& material = scene_->AddMaterial("mtl" + std::to_string(i));
    material.data.className = kClasses[i % 4];
    material.name = u"Material " + Number(i);
    if (i % 4 == 3) {
      StandardMaterialData standard;
      standard.diffuse = {Unit(), Unit(), Unit()};
      material.standard = standard;
    } else {
      Block(material.data,
            {Colour(u"baseColor", {Unit(), Unit(), Unit()}), Float(u"baseRoughness", Unit()),
             Float(u"reflection_glossiness", Unit()), Float(u"roughness", Unit()),
             Float(u"baseMapAmount", 1.0f)});
    }
    int slots = 2 + Pick(3);
    for (int s = 0; s < slots; ++s)
      material.slots.push_back({u"slot" + Number(s), maps_[Pick(static_cast<int>(maps_.size()))]});
    materials_.push_back(&material);
    // Every tenth material is a multi-material over earlier ones.
    if (i % 10 == 9) {
      MemMtl& multi = scene_->AddMaterial("multi" + std::to_string(i));
      multi.data.className = u"Multimaterial";
      multi.data.classId = MULTI_MATERIAL_CLASS_ID;
      multi.name = u"Multi " + Number(i);
      for (int s = 0; s < 3; ++s)
        multi.subMaterials.push_back(materials_[Pick(static_cast<int>(materials_.size()))]);
      materials_.push_back(&multi);
    }
  }

  MemObject& MakeMesh(int i) {
    MemObject& object = scene_->AddObject("geo" + std::to_string(i));
    object.data.className = u"Editable Poly";
    object.data.superClassId = GEOMOBJECT_CLASS_ID;
    MemMesh mesh;
    mesh.vertices = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
    mesh.faces = {{{0, 1, 2}, static_cast<uint16_t>(Pick(3))},
                  {{0, 2, 3}, static_cast<uint16_t>(Pick(3))}};
    object.mesh = mesh;
    return object;
  }

  void MakeGeometry(int count) {
    static const std::u16string kNames[] = {u"Box",  u"Chair", u"Table", u"Wall", u"Floor",
                                            u"Lamp", u"Plant", u"Shelf", u"Book", u"Cup"};
    Object* shared = nullptr;
    for (int i = 0; i < count; ++i) {
      MemNode& node = scene_->AddNode("node" + std::to_string(i));
      node.name = kNames[i % 10] + (i % 3 == 0 ? u"" : Number(i / 10));  // many repeated names
      node.scene = scene_.get();
      node.parent = static_cast<MemNode*>(scene_->GetRootNode());
      node.parent->children.push_back(&node);
      node.transform.rows[3] = {static_cast<float>(i % 100) * 50, static_cast<float>(i / 100) * 50,
                                0};
      if (i % 5 != 0 || shared == nullptr) shared = &MakeMesh(i);  // every fifth node an instance
      node.objectRef = shared;
      if (i % 10 == 0) node.objectRef = &Displaced(i, *shared);
      node.material = materials_[Pick(static_cast<int>(materials_.size()))];
    }
  }

  MemDerivedObject& Displaced(int i, Object& base) {
    MemModifier& modifier = scene_->AddModifier("disp" + std::to_string(i));
    bool corona = i % 20 == 0;
    modifier.data.className = corona ? u"CoronaDisplacementMod" : u"VRayDisplacementMod";
    modifier.data.superClassId = OSM_CLASS_ID;
    Block(modifier.data,
          {Float(corona ? u"maxDisplace" : u"amount", 1.5f), Float(u"waterLevel", 0)});
    MemDerivedObject& stack = scene_->AddDerivedObject("stack" + std::to_string(i));
    stack.modifiers.push_back(&modifier);
    stack.objRef = &base;
    return stack;
  }

  void MakeLights(int count) {
    MemObject* shared = nullptr;
    for (int i = 0; i < count; ++i) {
      if (i % 3 == 0) {  // groups of three instances
        shared = &scene_->AddObject("light" + std::to_string(i));
        shared->data.className = i % 2 == 0 ? u"CoronaLight" : u"VRayLight";
        shared->data.superClassId = LIGHT_CLASS_ID;
        Block(shared->data, {Float(u"intensity", 10),
                             {u"width", TYPE_WORLD, {100.0f}},
                             {u"iesFile",
                              TYPE_FILENAME,
                              {std::optional<std::u16string>(u"C:\\ies\\missing.ies")}}});
      }
      MemNode& node = scene_->AddNode("lightnode" + std::to_string(i));
      node.name = u"Light " + Number(i);
      node.scene = scene_.get();
      node.parent = static_cast<MemNode*>(scene_->GetRootNode());
      node.parent->children.push_back(&node);
      node.objectRef = shared;
      node.transform.rows[3] = {static_cast<float>(i) * 10, 0, 280};
    }
  }

  void MakeCameras(int count) {
    for (int i = 0; i < count; ++i) {
      MemObject& camera = scene_->AddObject("camera" + std::to_string(i));
      camera.data.className = u"Physical";
      camera.data.superClassId = CAMERA_CLASS_ID;
      camera.camera = CameraData{0.8f, false, 300, i % 2 == 0, 1, 10000};
      MemNode& node = scene_->AddNode("cameranode" + std::to_string(i));
      node.name = u"Camera " + Number(i);
      node.scene = scene_.get();
      node.parent = static_cast<MemNode*>(scene_->GetRootNode());
      node.parent->children.push_back(&node);
      node.objectRef = &camera;
    }
  }

  std::mt19937 random_;
  std::unique_ptr<MemScene> scene_;
  std::vector<MemTexmap*> maps_;
  std::vector<MemMtl*> materials_;
};

int Count(const ParsedFlags& flags, const std::string& flag, int fallback) {
  if (!flags.Has(flag)) return fallback;
  return std::stoi(flags.Get(flag));
}

// The generated maps name C:\textures\tex0.jpg to tex499.jpg; with --textures those files are
// written (64 KB each) into a folder and the scene's file table points at them, so a send of the
// scene has real textures to copy.
bool WriteTextures(MemScene& scene, const std::filesystem::path& folder,
                   const std::filesystem::path& sceneFile, std::ostream& err) {
  if (!MakeFolder(folder, "the textures", err)) return false;
  std::filesystem::path sceneFolder = std::filesystem::absolute(sceneFile).parent_path();
  std::string bytes(64 * 1024, '\0');
  for (size_t i = 0; i < bytes.size(); ++i)
    bytes[i] = static_cast<char>(i * 2654435761u >> 13);
  for (int i = 0; i < 500; ++i) {
    std::string name = "tex" + std::to_string(i) + ".jpg";
    std::ofstream(folder / name, std::ios::binary) << bytes;
    scene.fileAliases.emplace_back(u"C:\\textures\\" + FromUtf8(name),
                                   (std::filesystem::absolute(folder) / name)
                                       .lexically_relative(sceneFolder)
                                       .generic_string());
  }
  return true;
}

}  // namespace

int RunSceneGenerate(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  ParsedFlags flags = ParseFlags(
      args, {"--objects", "--materials", "--lights", "--cameras", "--seed", "--textures", "-o"},
      {"-o"});
  if (flags.error.empty() && !flags.positional.empty())
    flags.error = "unexpected " + flags.positional[0];
  int objects = 0, materials = 0, lights = 0, cameras = 0;
  unsigned seed = 1;
  try {
    objects = Count(flags, "--objects", 1000);
    materials = Count(flags, "--materials", std::max(1, objects / 5));
    lights = Count(flags, "--lights", std::max(3, objects / 100));
    cameras = Count(flags, "--cameras", std::max(1, objects / 1000));
    seed = static_cast<unsigned>(Count(flags, "--seed", 1));
  } catch (const std::exception&) {
    if (flags.error.empty()) flags.error = "counts and the seed must be whole numbers";
  }
  if (flags.error.empty() && (objects < 0 || materials < 1 || lights < 0 || cameras < 0)) {
    flags.error = "counts must not be negative, and there must be at least one material";
  }
  if (!flags.error.empty()) return UsageError(err, flags.error);
  std::unique_ptr<MemScene> scene = Generator(seed).Generate(objects, materials, lights, cameras);
  if (flags.Has("--textures") &&
      !WriteTextures(*scene, flags.Get("--textures"), flags.Get("-o"), err)) {
    return kExitFailure;
  }
  std::ofstream file(flags.Get("-o"), std::ios::binary);
  file << WriteSceneText(*scene);
  file.close();
  if (!file) {
    err << "orvane: cannot write " << flags.Get("-o") << "\n";
    return kExitFailure;
  }
  out << flags.Get("-o") << ": " << objects << " objects, " << materials << " materials, " << lights
      << " lights, " << cameras << " cameras (seed " << seed << ")\n";
  return kExitOk;
}

}  // namespace orvane::cli
