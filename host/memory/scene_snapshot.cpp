#include "host/memory/scene_snapshot.h"

#include <set>
#include <string>
#include <unordered_map>
#include <utility>

#include "host/memory/scene_file_names.h"

namespace orvane::host::memory {

class SceneSnapshot::Copier {
 public:
  explicit Copier(Interface& host) : host_(host), t_(host.GetTime()) {}

  void CopyScene() {
    CopySettings();
    CopyHierarchy(*host_.GetRootNode(), nullptr);
    // Details second: a node may name as its target a node that comes later in the walk.
    for (size_t i = 0; i < nodeOrder_.size(); ++i)
      CopyNodeDetails(*nodeOrder_[i].first, *nodeOrder_[i].second);
    if (host_.GetEnvironmentMap() != nullptr)
      scene_->environmentMap = CopyMap(*host_.GetEnvironmentMap());
  }

  void Add(Animatable& found) { CopyReference(&found); }

  std::unique_ptr<MemScene> Finish() {
    CopyFileResolution();
    scene_->IndexHandles();
    return std::move(scene_);
  }

 private:
  void CopySettings() {
    scene_->time = t_;
    scene_->metresPerUnit = host_.GetSystemUnitScale(UNITS_METERS);
    scene_->fileName = host_.GetCurFileName();
    scene_->filePath = host_.GetCurFilePath();
    scene_->settingsDirectory = host_.GetDir(APP_USER_SCRIPTS_DIR);
    scene_->background = host_.GetBackGround(t_);
    scene_->useEnvironmentMap = host_.GetUseEnvironmentMap();
  }

  // The copy already made of `from`, or null.
  template <class T>
  T* Known(const Animatable& from) const {
    auto found = copies_.find(&from);
    return found != copies_.end() ? static_cast<T*>(found->second) : nullptr;
  }

  std::string NextId(const char* prefix) { return prefix + std::to_string(++idCount_); }

  // Registers `copy` as the copy of `from` and copies what every animatable has.
  template <class Copy>
  void CopyCommon(const Animatable& from, Copy& copy) {
    copy.data.handle = from.GetHandle();
    copy.data.handleGiven = true;
    copy.data.className = from.GetClassName();
    copy.data.classId = from.ClassID();
    copy.data.superClassId = from.SuperClassID();
    copies_[&from] = &copy;
  }

  // --- Nodes ---

  void CopyHierarchy(INode& from, MemNode* parent) {
    for (int i = 0; i < from.NumberOfChildren(); ++i) {
      INode* child = from.GetChildNode(i);
      if (child == nullptr || copies_.count(child) != 0) continue;
      MemNode& copy = AddNode(*child, parent);
      CopyHierarchy(*child, &copy);
    }
  }

  MemNode& AddNode(INode& from, MemNode* parent) {
    MemNode& copy = scene_->AddNode(NextId("node"));
    copy.name = from.GetName();
    copy.data.handle = from.GetHandle();
    copy.data.handleGiven = true;
    copy.data.className = u"Node";
    copy.data.superClassId = 0x1;
    copies_[&from] = &copy;
    MemNode* owner = parent != nullptr ? parent : static_cast<MemNode*>(scene_->GetRootNode());
    copy.parent = owner;
    owner->children.push_back(&copy);
    nodeOrder_.emplace_back(&from, &copy);
    return copy;
  }

  MemNode* CopyNodeReference(INode& from) {
    if (auto* known = Known<MemNode>(from)) return known;
    // Outside the hierarchy: kept as a child of the root so that nothing named is lost.
    return &AddNode(from, nullptr);
  }

  void CopyNodeDetails(INode& from, MemNode& to) {
    CopyBlocks(from, to.data);
    to.transform = from.GetNodeTM(t_);
    if (INode* target = from.GetTarget()) to.target = CopyNodeReference(*target);
    if (Mtl* material = from.GetMtl()) to.material = CopyMaterial(*material);
    Object* reference = from.GetObjectRef();
    if (reference != nullptr) to.objectRef = CopyObject(*reference);
    Object* evaluated = from.EvalWorldState(t_);
    if (evaluated != BaseOfStack(reference))
      to.worldStateOverride = evaluated != nullptr ? CopyObject(*evaluated) : nullptr;
  }

  static Object* BaseOfStack(Object* object) {
    while (object != nullptr && object->AsDerivedObject() != nullptr)
      object = object->AsDerivedObject()->GetObjRef();
    return object;
  }

  // --- Objects and modifiers ---

  Object* CopyObject(Object& from) {
    if (auto* known = Known<Object>(from)) return known;
    if (IDerivedObject* derived = from.AsDerivedObject()) return CopyDerived(*derived);
    MemObject& copy = scene_->AddObject(NextId("object"));
    CopyCommon(from, copy);
    CopyBlocks(from, copy.data);
    if (GenCamera* camera = from.AsCamera()) copy.camera = CopyCamera(*camera);
    CopyMesh(from, copy);
    return &copy;
  }

  Object* CopyDerived(IDerivedObject& from) {
    MemDerivedObject& copy = scene_->AddDerivedObject(NextId("stack"));
    CopyCommon(from, copy);
    CopyBlocks(from, copy.data);
    for (int i = 0; i < from.NumModifiers(); ++i) {
      Modifier* modifier = from.GetModifier(i);
      copy.modifiers.push_back(modifier != nullptr ? CopyModifier(*modifier) : nullptr);
    }
    if (Object* wrapped = from.GetObjRef()) copy.objRef = CopyObject(*wrapped);
    return &copy;
  }

  Modifier* CopyModifier(Modifier& from) {
    if (auto* known = Known<Modifier>(from)) return known;
    MemModifier& copy = scene_->AddModifier(NextId("modifier"));
    CopyCommon(from, copy);
    CopyBlocks(from, copy.data);
    return &copy;
  }

  CameraData CopyCamera(GenCamera& from) {
    CameraData camera;
    camera.fov = from.GetFOV(t_);
    camera.ortho = from.IsOrtho();
    camera.targetDistance = from.GetTDist(t_);
    camera.manualClip = from.GetManualClip();
    camera.nearClip = from.GetClipDist(t_, GenCamera::kNearClip);
    camera.farClip = from.GetClipDist(t_, GenCamera::kFarClip);
    return camera;
  }

  void CopyMesh(Object& from, MemObject& to) {
    if (!from.CanConvertToTriObject()) return;
    TriObject* converted = from.ConvertToTriObject(t_);
    if (converted == nullptr) return;
    to.isTriObject = converted == &from;
    to.mesh = ReadMesh(converted->GetMesh());
    if (!to.isTriObject) converted->DeleteThis();
  }

  static MemMesh ReadMesh(const Mesh& from) {
    MemMesh mesh;
    for (int i = 0; i < from.GetNumVerts(); ++i)
      mesh.vertices.push_back(from.GetVert(i));
    for (int i = 0; i < from.GetNumFaces(); ++i)
      mesh.faces.push_back(from.GetFace(i));
    for (int i = 0; i < from.GetNumVertCol(); ++i)
      mesh.vertexColors.push_back(from.GetVertCol(i));
    for (int i = 0; i < from.GetNumVCFaces(); ++i)
      mesh.colorFaces.push_back(from.GetVCFace(i));
    return mesh;
  }

  // --- Materials and maps ---

  Mtl* CopyMaterial(Mtl& from) {
    if (auto* known = Known<Mtl>(from)) return known;
    MemMtl& copy = scene_->AddMaterial(NextId("material"));
    // Registered before anything it refers to is copied: materials and maps may form cycles.
    CopyCommon(from, copy);
    copy.name = from.GetName();
    StdMat2* standard = from.GetStdMat2();
    if (standard != nullptr) copy.standard = CopyStandard(*standard);
    CopyBlocks(from, copy.data);
    CopySlots(from, standard, copy.slots);
    for (int i = 0; i < from.NumSubMtls(); ++i) {
      Mtl* sub = from.GetSubMtl(i);
      copy.subMaterials.push_back(sub != nullptr ? CopyMaterial(*sub) : nullptr);
    }
    return &copy;
  }

  StandardMaterialData CopyStandard(const StdMat2& from) const {
    StandardMaterialData data;
    data.diffuse = from.GetDiffuse(t_);
    data.specular = from.GetSpecular(t_);
    data.filter = from.GetFilter(t_);
    data.shininess = from.GetShininess(t_);
    data.shininessStrength = from.GetShinStr(t_);
    data.opacity = from.GetOpacity(t_);
    data.selfIllum = from.GetSelfIllum(t_);
    data.ior = from.GetIOR(t_);
    data.twoSided = from.GetTwoSided();
    data.wire = from.GetWire();
    return data;
  }

  void CopySlots(MtlBase& from, const StdMat2* standard, std::vector<MapSlot>& slots) {
    for (int i = 0; i < from.NumSubTexmaps(); ++i) {
      MapSlot slot;
      slot.name = from.GetSubTexmapSlotName(i, false);
      if (Texmap* map = from.GetSubTexmap(i)) slot.map = CopyMap(*map);
      if (standard != nullptr) {
        slot.amount = standard->GetTexmapAmt(i, t_);
        slot.enabled = standard->MapEnabled(i);
      }
      slots.push_back(std::move(slot));
    }
  }

  Texmap* CopyMap(Texmap& from) {
    if (auto* known = Known<Texmap>(from)) return known;
    MemTexmap& copy = scene_->AddMap(NextId("map"));
    CopyCommon(from, copy);
    copy.name = from.GetName();
    if (const BitmapTex* bitmap = from.GetBitmapTex()) copy.bitmap = CopyBitmap(*bitmap);
    copy.monoCurves = CopyCurves(from.GetColorMapCurveCtl(false));
    copy.rgbCurves = CopyCurves(from.GetColorMapCurveCtl(true));
    CopyBlocks(from, copy.data);
    CopySlots(from, nullptr, copy.slots);
    return &copy;
  }

  BitmapData CopyBitmap(const BitmapTex& from) {
    BitmapData bitmap;
    bitmap.mapName = from.GetMapName();
    NamePath(bitmap.mapName);
    if (float gamma = 0; from.GetBitmapGamma(t_, gamma)) bitmap.loadedGamma = gamma;
    if (const StdUVGen* uv = from.GetUVGen()) {
      bitmap.uvGen =
          UVGenData{uv->GetUScl(t_), uv->GetVScl(t_),        uv->GetUOffs(t_),   uv->GetVOffs(t_),
                    uv->GetWAng(t_), uv->GetTextureTiling(), uv->GetMapChannel()};
    }
    return bitmap;
  }

  std::unique_ptr<MemCurveCtl> CopyCurves(const ICurveCtl* from) const {
    if (from == nullptr) return nullptr;
    auto control = std::make_unique<MemCurveCtl>();
    for (int c = 0; c < from->GetNumCurves(); ++c) {
      const ICurve* curve = from->GetControlCurve(c);
      if (curve == nullptr) {
        control->curves.push_back(nullptr);
        continue;
      }
      auto copy = std::make_unique<MemCurve>();
      for (int i = 0; i < kCurveSampleCount; ++i) {
        float x = CurveSampleX(i);
        copy->points.emplace_back(x, curve->GetValue(t_, x));
      }
      control->curves.push_back(std::move(copy));
    }
    return control;
  }

  // --- Parameter blocks ---

  void CopyBlocks(const Animatable& from, AnimatableData& to) {
    for (int b = 0; b < from.NumParamBlocks(); ++b) {
      const IParamBlock2* block = from.GetParamBlock(b);
      if (block == nullptr) {
        to.blocks.push_back(nullptr);
        continue;
      }
      auto copy = std::make_unique<MemParamBlock>();
      if (const ParamBlockDesc2* desc = block->GetDesc()) {
        for (int i = 0; i < desc->Count(); ++i)
          copy->params.push_back(CopyParam(*block, *desc, i));
      }
      to.blocks.push_back(std::move(copy));
    }
  }

  MemParam CopyParam(const IParamBlock2& block, const ParamBlockDesc2& desc, int index) {
    MemParam param;
    if (auto name = desc.GetParamName(index)) param.name = std::u16string(*name);
    param.type = desc.GetParamType(index);
    bool table = (param.type & TYPE_TAB) != 0;
    int count = table ? block.Count(index) : 1;
    for (int e = 0; e < count; ++e)
      param.elements.push_back(ReadElement(block, index, param.type & ~TYPE_TAB, e));
    return param;
  }

  // The element as the core would read it; a value the getters refuse stays empty.
  ParamElement ReadElement(const IParamBlock2& block, int index, int baseType, int tabIndex) {
    if (!ParamTypeHoldsValue(baseType)) return std::monostate();
    switch (baseType) {
      case TYPE_INT:
      case TYPE_INDEX:
      case TYPE_BOOL: return Read<int>(block, index, tabIndex, &IParamBlock2::GetInt);
      case TYPE_RGBA:
      case TYPE_FRGBA: return Read<Color>(block, index, tabIndex, &IParamBlock2::GetColor);
      case TYPE_POINT3: return Read<Point3>(block, index, tabIndex, &IParamBlock2::GetPoint3);
      case TYPE_STRING:
      case TYPE_FILENAME: {
        ParamElement text =
            Read<std::optional<std::u16string>>(block, index, tabIndex, &IParamBlock2::GetString);
        if (auto* path = std::get_if<std::optional<std::u16string>>(&text); path && *path)
          NamePath(**path);
        return text;
      }
      case TYPE_MTL:
      case TYPE_TEXMAP:
      case TYPE_INODE:
      case TYPE_REFTARG: {
        Animatable* target = nullptr;
        if (!block.GetReference(index, t_, target, tabIndex)) return std::monostate();
        return CopyReference(target);
      }
      case TYPE_MATRIX3: return Matrix3{};
      default: return Read<float>(block, index, tabIndex, &IParamBlock2::GetFloat);
    }
  }

  template <class T, class Getter>
  ParamElement Read(const IParamBlock2& block, int index, int tabIndex, Getter getter) {
    T value{};
    if (!(block.*getter)(index, t_, value, tabIndex)) return std::monostate();
    return value;
  }

  Animatable* CopyReference(Animatable* target) {
    if (target == nullptr) return nullptr;
    if (auto* node = dynamic_cast<INode*>(target)) return CopyNodeReference(*node);
    if (auto* material = dynamic_cast<Mtl*>(target)) return CopyMaterial(*material);
    if (auto* map = dynamic_cast<Texmap*>(target)) return CopyMap(*map);
    if (auto* object = dynamic_cast<Object*>(target)) return CopyObject(*object);
    if (auto* modifier = dynamic_cast<Modifier*>(target)) return CopyModifier(*modifier);
    // A kind of animatable the core never looks into (a controller, say).
    return nullptr;
  }

  // --- File resolution ---

  void NamePath(const std::u16string& path) {
    if (!path.empty()) paths_.insert(path);
  }

  void CopyFileResolution() {
    IFileResolutionManager* resolver = host_.GetFileResolutionManager();
    if (resolver == nullptr) {
      scene_->fileResolution.reset();
      return;
    }
    for (AssetType type : {kBitmapAsset, kPhotometricAsset}) {
      for (const std::u16string& path : paths_) {
        std::u16string answer = resolver->GetFullFilePath(path, type);
        if (!answer.empty()) scene_->fileResolution->push_back({path, type, std::move(answer)});
      }
    }
  }

  Interface& host_;
  TimeValue t_;
  std::unique_ptr<MemScene> scene_ = std::make_unique<MemScene>();
  std::unordered_map<const Animatable*, Animatable*> copies_;
  std::vector<std::pair<INode*, MemNode*>> nodeOrder_;
  std::set<std::u16string> paths_;
  int idCount_ = 0;
};

SceneSnapshot::SceneSnapshot(Interface& host) : copier_(std::make_unique<Copier>(host)) {
  copier_->CopyScene();
}

SceneSnapshot::~SceneSnapshot() = default;

void SceneSnapshot::Add(Animatable& found) {
  copier_->Add(found);
}

std::unique_ptr<MemScene> SceneSnapshot::Release() {
  return copier_->Finish();
}

std::unique_ptr<MemScene> SnapshotScene(Interface& host) {
  return SceneSnapshot(host).Release();
}

}  // namespace orvane::host::memory
