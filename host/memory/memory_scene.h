// The in-memory host: a scene held in memory that answers the core like the real host does.
// Scene files load into it (scene_file.h); tests, the command-line tool and the benchmarks run
// the core against it. It also records what the core changed, so tests can check that.
#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "base/flat_map.h"
#include "host/interface.h"
#include "host/local_file_system.h"
#include "host/memory/id_table.h"
#include "host/mtl.h"
#include "host/node.h"
#include "host/object.h"

namespace orvane::host::memory {

class MemScene;

// One element of a parameter's value; plain parameters have exactly one.
using ParamElement = std::variant<std::monostate,                 // a type that holds no value
                                  float,                          // float, angle, percent, world
                                  int,                            // int, index, bool
                                  Color,                          // rgba, frgba
                                  Point3,                         // point3
                                  std::optional<std::u16string>,  // string, filename (may be null)
                                  Animatable*,                    // mtl, texmap, node, reftarg
                                  Matrix3>;                       // matrix3

struct MemParam {
  std::optional<std::u16string> name;
  ParamType2 type = TYPE_FLOAT;
  std::vector<ParamElement> elements;
};

// A parameter block that is its own descriptor.
class MemParamBlock final : public IParamBlock2, public ParamBlockDesc2 {
 public:
  std::vector<MemParam> params;

  const ParamBlockDesc2* GetDesc() const override { return this; }
  int Count() const override { return static_cast<int>(params.size()); }
  std::optional<std::u16string_view> GetParamName(int index) const override;
  ParamType2 GetParamType(int index) const override;

  int Count(int index) const override;
  bool GetFloat(int index, TimeValue t, float& value, int tabIndex) const override;
  bool GetInt(int index, TimeValue t, int& value, int tabIndex) const override;
  bool GetColor(int index, TimeValue t, Color& value, int tabIndex) const override;
  bool GetPoint3(int index, TimeValue t, Point3& value, int tabIndex) const override;
  bool GetString(int index, TimeValue t, std::optional<std::u16string>& value,
                 int tabIndex) const override;
  bool GetReference(int index, TimeValue t, Animatable*& value, int tabIndex) const override;

 private:
  template <class T>
  bool Read(int index, int tabIndex, T& value) const;
};

// What every in-memory animatable holds.
struct AnimatableData {
  std::string id;  // the scene file's id
  AnimHandle handle = 0;
  bool handleGiven = false;  // 0 given on purpose means "the host gives none"
  std::u16string className;
  Class_ID classId;
  SClass_ID superClassId = 0;
  std::vector<std::unique_ptr<MemParamBlock>> blocks;  // null entries stand for missing blocks
};

template <class Base>
class MemAnimatable : public Base {
 public:
  AnimatableData data;

  AnimHandle GetHandle() const override { return data.handle; }
  std::u16string GetClassName() const override { return data.className; }
  Class_ID ClassID() const override { return data.classId; }
  SClass_ID SuperClassID() const override { return data.superClassId; }
  int NumParamBlocks() const override { return static_cast<int>(data.blocks.size()); }
  IParamBlock2* GetParamBlock(int index) const override {
    if (index < 0 || index >= NumParamBlocks()) return nullptr;
    return data.blocks[static_cast<size_t>(index)].get();
  }
};

struct MapSlot {
  std::u16string name;
  Texmap* map = nullptr;
  float amount = 1;     // the standard material's per-slot amount
  bool enabled = true;  // the standard material's per-slot switch
};

template <class Base>
class MemMtlBase : public MemAnimatable<Base> {
 public:
  std::u16string name;
  std::vector<MapSlot> slots;
  MemScene* scene = nullptr;

  std::u16string GetName() const override { return name; }
  void SetName(std::u16string_view newName) override;
  int NumSubTexmaps() const override { return static_cast<int>(slots.size()); }
  Texmap* GetSubTexmap(int index) const override {
    return InRange(index) ? slots[static_cast<size_t>(index)].map : nullptr;
  }
  std::u16string GetSubTexmapSlotName(int index, bool) const override {
    return InRange(index) ? slots[static_cast<size_t>(index)].name : std::u16string();
  }

 protected:
  bool InRange(int index) const { return index >= 0 && index < NumSubTexmaps(); }
};

struct StandardMaterialData {
  Color diffuse, specular, filter;
  float shininess = 0, shininessStrength = 0, opacity = 1, selfIllum = 0, ior = 1.5f;
  bool twoSided = false, wire = false;
};

class MemMtl final : public MemMtlBase<Mtl>, public StdMat2 {
 public:
  std::vector<Mtl*> subMaterials;
  std::optional<StandardMaterialData> standard;

  int NumSubMtls() const override { return static_cast<int>(subMaterials.size()); }
  Mtl* GetSubMtl(int index) const override;
  StdMat2* GetStdMat2() const override { return standard ? const_cast<MemMtl*>(this) : nullptr; }

  Color GetDiffuse(TimeValue) const override { return standard->diffuse; }
  Color GetSpecular(TimeValue) const override { return standard->specular; }
  Color GetFilter(TimeValue) const override { return standard->filter; }
  float GetShininess(TimeValue) const override { return standard->shininess; }
  float GetShinStr(TimeValue) const override { return standard->shininessStrength; }
  float GetOpacity(TimeValue) const override { return standard->opacity; }
  float GetSelfIllum(TimeValue) const override { return standard->selfIllum; }
  float GetIOR(TimeValue) const override { return standard->ior; }
  bool GetTwoSided() const override { return standard->twoSided; }
  bool GetWire() const override { return standard->wire; }
  float GetTexmapAmt(int slotIndex, TimeValue) const override;
  bool MapEnabled(int slotIndex) const override;
};

// A piecewise-linear curve through (x, y) points sorted by x.
class MemCurve final : public ICurve {
 public:
  std::vector<std::pair<float, float>> points;
  float GetValue(TimeValue t, float x) const override;
};

class MemCurveCtl final : public ICurveCtl {
 public:
  std::vector<std::unique_ptr<MemCurve>> curves;  // null entries stand for missing curves
  int GetNumCurves() const override { return static_cast<int>(curves.size()); }
  ICurve* GetControlCurve(int index) const override;
};

struct UVGenData {
  float uScale = 1, vScale = 1, uOffset = 0, vOffset = 0, wAngle = 0;
  int tiling = StdUVGen::U_WRAP | StdUVGen::V_WRAP;
  int mapChannel = 1;
};

struct BitmapData {
  std::u16string mapName;
  std::optional<float> loadedGamma;  // nullopt: no image loaded
  std::optional<UVGenData> uvGen;
};

class MemTexmap final : public MemMtlBase<Texmap>, public BitmapTex, public StdUVGen {
 public:
  std::optional<BitmapData> bitmap;
  std::unique_ptr<MemCurveCtl> monoCurves, rgbCurves;

  BitmapTex* GetBitmapTex() const override {
    return bitmap ? const_cast<MemTexmap*>(this) : nullptr;
  }
  ICurveCtl* GetColorMapCurveCtl(bool rgb) const override {
    return rgb ? rgbCurves.get() : monoCurves.get();
  }

  std::u16string GetMapName() const override { return bitmap->mapName; }
  bool GetBitmapGamma(TimeValue t, float& gamma) const override;
  StdUVGen* GetUVGen() const override;

  float GetUScl(TimeValue) const override { return bitmap->uvGen->uScale; }
  float GetVScl(TimeValue) const override { return bitmap->uvGen->vScale; }
  float GetUOffs(TimeValue) const override { return bitmap->uvGen->uOffset; }
  float GetVOffs(TimeValue) const override { return bitmap->uvGen->vOffset; }
  float GetWAng(TimeValue) const override { return bitmap->uvGen->wAngle; }
  int GetTextureTiling() const override { return bitmap->uvGen->tiling; }
  int GetMapChannel() const override { return bitmap->uvGen->mapChannel; }
};

class MemMesh final : public Mesh {
 public:
  std::vector<Point3> vertices;
  std::vector<MeshFace> faces;
  std::vector<Point3> vertexColors;
  std::vector<std::array<int, 3>> colorFaces;
  int cacheInvalidations = 0;

  int GetNumVerts() const override { return static_cast<int>(vertices.size()); }
  Point3 GetVert(int index) const override { return vertices.at(static_cast<size_t>(index)); }
  int GetNumFaces() const override { return static_cast<int>(faces.size()); }
  MeshFace GetFace(int index) const override { return faces.at(static_cast<size_t>(index)); }
  int GetNumVertCol() const override { return static_cast<int>(vertexColors.size()); }
  Point3 GetVertCol(int index) const override {
    return vertexColors.at(static_cast<size_t>(index));
  }
  int GetNumVCFaces() const override { return static_cast<int>(colorFaces.size()); }
  std::array<int, 3> GetVCFace(int face) const override {
    return colorFaces.at(static_cast<size_t>(face));
  }
  void SetNumVertCol(int count) override;
  void SetVertCol(int index, Point3 color) override;
  void SetNumVCFaces(int count) override;
  void SetVCFace(int face, std::array<int, 3> colorIndices) override;
  void InvalidateGeomCache() override { ++cacheInvalidations; }
};

struct CameraData {
  float fov = 0.785398f;
  bool ortho = false;
  float targetDistance = 0;
  bool manualClip = false;
  float nearClip = 0, farClip = 1000;
};

// A base object: geometry, shape, light, camera or helper. It converts to a triangle mesh when
// it has mesh data; when it is a triangle-mesh object itself, conversion answers the object.
class MemObject final : public MemAnimatable<TriObject>, public GenCamera {
 public:
  std::optional<MemMesh> mesh;
  bool isTriObject = false;
  std::optional<CameraData> camera;
  MemScene* scene = nullptr;

  GenCamera* AsCamera() override { return camera ? this : nullptr; }
  bool CanConvertToTriObject() const override { return mesh.has_value(); }
  TriObject* ConvertToTriObject(TimeValue t) override;
  void DeleteThis() override;
  Mesh& GetMesh() override { return *mesh; }

  float GetFOV(TimeValue) const override { return camera->fov; }
  bool IsOrtho() const override { return camera->ortho; }
  float GetTDist(TimeValue) const override { return camera->targetDistance; }
  bool GetManualClip() const override { return camera->manualClip; }
  float GetClipDist(TimeValue, ClipPlane which) const override {
    return which == kNearClip ? camera->nearClip : camera->farClip;
  }
};

class MemModifier final : public MemAnimatable<Modifier> {};

class MemDerivedObject final : public MemAnimatable<IDerivedObject> {
 public:
  std::vector<Modifier*> modifiers;
  Object* objRef = nullptr;

  IDerivedObject* AsDerivedObject() override { return this; }
  // The in-memory host evaluates stacks to their base object, so the core never needs to
  // convert a stack level itself.
  bool CanConvertToTriObject() const override { return false; }
  TriObject* ConvertToTriObject(TimeValue) override { return nullptr; }
  void DeleteThis() override {}

  int NumModifiers() const override { return static_cast<int>(modifiers.size()); }
  Modifier* GetModifier(int index) const override;
  Object* GetObjRef() const override { return objRef; }
};

class MemNode final : public MemAnimatable<INode> {
 public:
  std::u16string name;
  MemNode* parent = nullptr;
  std::vector<MemNode*> children;
  INode* target = nullptr;
  Matrix3 transform;
  Object* objectRef = nullptr;
  // Set when the scene file names the evaluated object; otherwise the object reference is
  // evaluated through its modifier stacks.
  std::optional<Object*> worldStateOverride;
  Mtl* material = nullptr;
  MemScene* scene = nullptr;

  std::u16string GetName() const override { return name; }
  void SetName(std::u16string_view newName) override;
  int NumberOfChildren() const override { return static_cast<int>(children.size()); }
  INode* GetChildNode(int index) const override;
  INode* GetTarget() const override { return target; }
  Matrix3 GetNodeTM(TimeValue) const override { return transform; }
  Object* GetObjectRef() const override { return objectRef; }
  void SetObjectRef(Object* object) override;
  Object* EvalWorldState(TimeValue t) override;
  Mtl* GetMtl() const override { return material; }
};

// How the scene answers a script whose text contains every one of `contains`.
struct ScriptRule {
  std::vector<std::u16string> contains;
  bool fails = false;
  std::optional<std::u16string> reply;  // nullopt: the run succeeds with a non-string value
};

struct FileResolutionAnswer {
  std::u16string path;
  AssetType assetType = kBitmapAsset;
  std::u16string answer;
};

enum class ExportBehaviour { kWrites, kFails, kWritesNothing };

// What the core changed or asked for, in order.
struct Rename {
  std::string id;
  std::u16string oldName, newName;
};
struct ObjectReplacement {
  std::string nodeId, objectId;
};
struct ScriptRun {
  std::u16string script;
  bool quietErrors = false, wantResult = false;
};
struct ExportCall {
  std::u16string path;
  bool succeeded = false;
};
struct LogEntry {
  LogType type = SYSLOG_INFO;
  std::u16string title, text;
};

class MemScene final : public Interface, public IFileResolutionManager {
 public:
  MemScene();

  // --- Interface ---
  TimeValue GetTime() const override { return time; }
  INode* GetRootNode() override { return root_; }
  double GetSystemUnitScale(UnitType unitType) const override;
  std::u16string GetCurFileName() const override { return fileName; }
  std::u16string GetCurFilePath() const override { return filePath; }
  std::u16string GetDir(DirectoryCode which) const override;
  Color GetBackGround(TimeValue) const override { return background; }
  bool GetUseEnvironmentMap() const override { return useEnvironmentMap; }
  Texmap* GetEnvironmentMap() const override { return environmentMap; }
  bool ExportToFile(std::u16string_view path, bool suppressPrompts) override;
  ScriptResult ExecuteMAXScriptScript(std::u16string_view script, bool quietErrors,
                                      bool wantResult) override;
  Animatable* GetAnimByHandle(AnimHandle handle) override;
  IFileResolutionManager* GetFileResolutionManager() override;
  void Log(LogType type, std::u16string_view title, std::u16string_view text) override;
  // Scale is the length of each basis row (the first negated for a mirroring transform); the
  // rotation is the unit quaternion of the remaining orthonormal basis, rows as images of the
  // axes.
  void DecomposeMatrix(const Matrix3& matrix, Point3& position, Quat& rotation,
                       Point3& scale) const override;

  // --- IFileResolutionManager ---
  std::u16string GetFullFilePath(std::u16string_view path, AssetType type) const override;

  // --- Scene settings, as the scene file gives them ---
  TimeValue time = 0;
  double metresPerUnit = 0.0254;
  std::u16string fileName, filePath, settingsDirectory;
  Color background;
  bool useEnvironmentMap = false;
  Texmap* environmentMap = nullptr;
  std::vector<ScriptRule> scriptRules;
  // nullopt: the service is unavailable; an empty list: available, but it places nothing.
  std::optional<std::vector<FileResolutionAnswer>> fileResolution{std::in_place};
  ExportBehaviour exportBehaviour = ExportBehaviour::kWrites;
  std::vector<std::pair<std::u16string, std::string>> fileAliases;  // host path, file text
  LocalFileSystem files;

  // --- Contents; the root node is nodes()[0] ---
  const std::vector<std::unique_ptr<MemNode>>& nodes() const { return nodes_; }
  const std::vector<std::unique_ptr<MemObject>>& objects() const { return objects_; }
  const std::vector<std::unique_ptr<MemDerivedObject>>& derivedObjects() const {
    return derivedObjects_;
  }
  const std::vector<std::unique_ptr<MemModifier>>& modifiers() const { return modifiers_; }
  const std::vector<std::unique_ptr<MemMtl>>& materials() const { return materials_; }
  const std::vector<std::unique_ptr<MemTexmap>>& maps() const { return maps_; }

  MemNode& AddNode(std::string id);
  MemObject& AddObject(std::string id);
  MemDerivedObject& AddDerivedObject(std::string id);
  MemModifier& AddModifier(std::string id);
  MemMtl& AddMaterial(std::string id);
  MemTexmap& AddMap(std::string id);

  // Room for `count` scene-file ids, so that a large scene's ids are not rehashed as they come.
  void ReserveIds(size_t count) { byId_.Reserve(count); }
  // Any animatable by its scene-file id, or null (a mesh converted since has none to find).
  Animatable* FindById(const std::string& id) const;
  void PrefetchId(std::string_view id) const { byId_.Prefetch(id); }
  // Gives every animatable whose handle was not given the next free one.
  void AssignMissingHandles();
  // Registers the handles given so far for GetAnimByHandle.
  void IndexHandles();
  // What the host does when the user deletes an animatable: its handle finds nothing any more.
  void ForgetHandle(AnimHandle handle) {
    byHandle_.Erase(handle);
    convertedByHandle_.Erase(handle);
  }

  // --- What the core did ---
  std::vector<Rename> renames;
  std::vector<ObjectReplacement> objectReplacements;
  // The latest script runs (at most kKeptScriptRuns) and how many ran in all: a large scene runs
  // hundreds of thousands of probes, and keeping every text would cost more than the package.
  static constexpr size_t kKeptScriptRuns = 10'000;
  std::deque<ScriptRun> scriptsRun;
  uint64_t scriptRunCount = 0;
  std::vector<ExportCall> exports;
  std::vector<LogEntry> log;

  // Called by the scene's objects.
  void RecordRename(const AnimatableData& data, std::u16string_view oldName,
                    std::u16string_view newName);
  void RecordObjectReplacement(const MemNode& node, const Object* object);
  MemObject& AddConvertedObject(const MemObject& from);
  void DeleteObject(const MemObject& object);
  static const AnimatableData* DataOf(const Animatable* animatable);

 private:
  template <class T>
  T& Register(std::vector<std::unique_ptr<T>>& list, std::string id);

  std::vector<std::unique_ptr<MemNode>> nodes_;
  std::vector<std::unique_ptr<MemObject>> objects_;
  std::vector<std::unique_ptr<MemDerivedObject>> derivedObjects_;
  std::vector<std::unique_ptr<MemModifier>> modifiers_;
  std::vector<std::unique_ptr<MemMtl>> materials_;
  std::vector<std::unique_ptr<MemTexmap>> maps_;
  MemNode* root_ = nullptr;
  IdTable byId_;
  FlatMap<AnimHandle, Animatable*> byHandle_;
  // Meshes converted since the load. Most are read and deleted at once, one per object record,
  // so they are kept apart in a table that stays small: entering each in the large one would cost
  // a wait for memory twice per record.
  FlatMap<AnimHandle, Animatable*> convertedByHandle_;
  int convertedCount_ = 0;
  // Whether a scene-file id looks like a converted object's; only then can a converted object's
  // id be taken already. A build converts a mesh per object record, and looking each new id up
  // would cost a cache miss each time.
  bool convertedIdsInFile_ = false;
  AnimHandle nextFreeHandle_ = 1;  // no handle at or above it is in use
};

template <class Base>
void MemMtlBase<Base>::SetName(std::u16string_view newName) {
  if (scene != nullptr) scene->RecordRename(this->data, name, newName);
  name = newName;
}

}  // namespace orvane::host::memory
