#include "host/memory/memory_scene.h"

#include <algorithm>
#include <cmath>

#include "host/memory/fbx_writer.h"

namespace orvane::host::memory {

namespace {

constexpr std::string_view kConvertedIdPrefix = "converted-";

bool IsTable(ParamType2 type) {
  return (type & TYPE_TAB) != 0;
}

// Whether `part` occurs in `text`. Every probe script of a build is a kilobyte or more, matched
// against each of the scene's script rules; a plain search stops at every occurrence of the
// part's first letter, this one (Horspool's) steps ahead by up to the part's length.
bool Contains(std::u16string_view text, std::u16string_view part) {
  if (part.empty()) return true;
  if (part.size() > text.size()) return false;
  size_t last = part.size() - 1;
  // Shifts by the low byte of the letter under the part's last place: a letter sharing its low
  // byte with one of the part's only shortens a step.
  size_t shift[256];
  std::fill(std::begin(shift), std::end(shift), part.size());
  for (size_t i = 0; i < last; ++i)
    shift[part[i] & 0xFF] = last - i;
  for (size_t at = 0; at + last < text.size(); at += shift[text[at + last] & 0xFF]) {
    if (text.substr(at, part.size()) == part) return true;
  }
  return false;
}

}  // namespace

// --- MemParamBlock ---

std::optional<std::u16string_view> MemParamBlock::GetParamName(int index) const {
  if (index < 0 || index >= Count() || !params[static_cast<size_t>(index)].name) {
    return std::nullopt;
  }
  return std::u16string_view(*params[static_cast<size_t>(index)].name);
}

ParamType2 MemParamBlock::GetParamType(int index) const {
  return params.at(static_cast<size_t>(index)).type;
}

int MemParamBlock::Count(int index) const {
  if (index < 0 || index >= Count()) return 0;
  const MemParam& param = params[static_cast<size_t>(index)];
  return IsTable(param.type) ? static_cast<int>(param.elements.size()) : 0;
}

template <class T>
bool MemParamBlock::Read(int index, int tabIndex, T& value) const {
  if (index < 0 || index >= Count()) return false;
  const MemParam& param = params[static_cast<size_t>(index)];
  if (!IsTable(param.type) && tabIndex != 0) return false;
  if (tabIndex < 0 || tabIndex >= static_cast<int>(param.elements.size())) return false;
  const auto* element = std::get_if<T>(&param.elements[static_cast<size_t>(tabIndex)]);
  if (element == nullptr) return false;
  value = *element;
  return true;
}

bool MemParamBlock::GetFloat(int index, TimeValue, float& value, int tabIndex) const {
  return Read(index, tabIndex, value);
}
bool MemParamBlock::GetInt(int index, TimeValue, int& value, int tabIndex) const {
  return Read(index, tabIndex, value);
}
bool MemParamBlock::GetColor(int index, TimeValue, Color& value, int tabIndex) const {
  return Read(index, tabIndex, value);
}
bool MemParamBlock::GetPoint3(int index, TimeValue, Point3& value, int tabIndex) const {
  return Read(index, tabIndex, value);
}
bool MemParamBlock::GetString(int index, TimeValue, std::optional<std::u16string>& value,
                              int tabIndex) const {
  return Read(index, tabIndex, value);
}
bool MemParamBlock::GetReference(int index, TimeValue, Animatable*& value, int tabIndex) const {
  return Read(index, tabIndex, value);
}

// --- Materials and maps ---

Mtl* MemMtl::GetSubMtl(int index) const {
  if (index < 0 || index >= NumSubMtls()) return nullptr;
  return subMaterials[static_cast<size_t>(index)];
}

float MemMtl::GetTexmapAmt(int slotIndex, TimeValue) const {
  return InRange(slotIndex) ? slots[static_cast<size_t>(slotIndex)].amount : 0.0f;
}

bool MemMtl::MapEnabled(int slotIndex) const {
  return InRange(slotIndex) && slots[static_cast<size_t>(slotIndex)].enabled;
}

float MemCurve::GetValue(TimeValue, float x) const {
  if (points.empty()) return 0;
  if (x <= points.front().first) return points.front().second;
  for (size_t i = 1; i < points.size(); ++i) {
    auto [x1, y1] = points[i];
    if (x == x1) return y1;  // exact at a point, whatever the rounding of the slope
    if (x < x1) {
      auto [x0, y0] = points[i - 1];
      return x1 == x0 ? y1 : y0 + (y1 - y0) * (x - x0) / (x1 - x0);
    }
  }
  return points.back().second;
}

ICurve* MemCurveCtl::GetControlCurve(int index) const {
  if (index < 0 || index >= GetNumCurves()) return nullptr;
  return curves[static_cast<size_t>(index)].get();
}

bool MemTexmap::GetBitmapGamma(TimeValue, float& gamma) const {
  if (!bitmap || !bitmap->loadedGamma) return false;
  gamma = *bitmap->loadedGamma;
  return true;
}

StdUVGen* MemTexmap::GetUVGen() const {
  return bitmap && bitmap->uvGen ? const_cast<MemTexmap*>(this) : nullptr;
}

// --- Meshes and objects ---

void MemMesh::SetNumVertCol(int count) {
  vertexColors.resize(static_cast<size_t>(count));
}
void MemMesh::SetVertCol(int index, Point3 color) {
  vertexColors.at(static_cast<size_t>(index)) = color;
}
void MemMesh::SetNumVCFaces(int count) {
  colorFaces.resize(static_cast<size_t>(count));
}
void MemMesh::SetVCFace(int face, std::array<int, 3> colorIndices) {
  colorFaces.at(static_cast<size_t>(face)) = colorIndices;
}

TriObject* MemObject::ConvertToTriObject(TimeValue) {
  if (!mesh) return nullptr;
  if (isTriObject) return this;
  return &scene->AddConvertedObject(*this);
}

void MemObject::DeleteThis() {
  scene->DeleteObject(*this);
}

Modifier* MemDerivedObject::GetModifier(int index) const {
  if (index < 0 || index >= NumModifiers()) return nullptr;
  return modifiers[static_cast<size_t>(index)];
}

// --- Nodes ---

void MemNode::SetName(std::u16string_view newName) {
  scene->RecordRename(data, name, newName);
  name = newName;
}

INode* MemNode::GetChildNode(int index) const {
  if (index < 0 || index >= NumberOfChildren()) return nullptr;
  return children[static_cast<size_t>(index)];
}

void MemNode::SetObjectRef(Object* object) {
  scene->RecordObjectReplacement(*this, object);
  objectRef = object;
  worldStateOverride.reset();
}

Object* MemNode::EvalWorldState(TimeValue) {
  if (worldStateOverride) return *worldStateOverride;
  Object* object = objectRef;
  // The loader rejects cyclic stacks, so this ends.
  while (object != nullptr && object->AsDerivedObject() != nullptr) {
    object = object->AsDerivedObject()->GetObjRef();
  }
  return object;
}

// --- The scene ---

MemScene::MemScene() {
  MemNode& root = AddNode("");
  root.name = u"Scene Root";
  root.data.className = u"RootNode";
  root_ = &root;
}

double MemScene::GetSystemUnitScale(UnitType unitType) const {
  static constexpr double kMetresPerUnit[] = {0.0254, 0.3048, 1609.344, 0.001, 0.01, 1.0, 1000.0};
  // A broken unit setting is passed on as the host would report it.
  if (metresPerUnit <= 0 || unitType < UNITS_INCHES || unitType > UNITS_KILOMETERS) {
    return metresPerUnit;
  }
  return metresPerUnit / kMetresPerUnit[unitType];
}

std::u16string MemScene::GetDir(DirectoryCode which) const {
  return which == APP_USER_SCRIPTS_DIR ? settingsDirectory : std::u16string();
}

bool MemScene::ExportToFile(std::u16string_view path, bool) {
  bool succeeded = false;
  switch (exportBehaviour) {
    case ExportBehaviour::kWrites: succeeded = files.WriteBytes(path, WriteFbx(*this)); break;
    case ExportBehaviour::kFails: break;
    case ExportBehaviour::kWritesNothing: succeeded = true; break;
  }
  exports.push_back({std::u16string(path), succeeded});
  return succeeded;
}

ScriptResult MemScene::ExecuteMAXScriptScript(std::u16string_view script, bool quietErrors,
                                              bool wantResult) {
  scriptsRun.push_back({std::u16string(script), quietErrors, wantResult});
  ++scriptRunCount;
  if (scriptsRun.size() > kKeptScriptRuns) scriptsRun.pop_front();
  for (const ScriptRule& rule : scriptRules) {
    bool matches = std::all_of(rule.contains.begin(), rule.contains.end(),
                               [&](const std::u16string& part) { return Contains(script, part); });
    if (!matches) continue;
    if (rule.fails) return {false, std::nullopt};
    return {true, wantResult ? rule.reply : std::nullopt};
  }
  // A script the scene has no answer for runs and yields nothing usable, like an undefined value.
  return {true, std::nullopt};
}

Animatable* MemScene::GetAnimByHandle(AnimHandle handle) {
  Animatable* const* found = byHandle_.Find(handle);
  if (found == nullptr) found = convertedByHandle_.Find(handle);
  return found != nullptr ? *found : nullptr;
}

IFileResolutionManager* MemScene::GetFileResolutionManager() {
  return fileResolution ? this : nullptr;
}

std::u16string MemScene::GetFullFilePath(std::u16string_view path, AssetType type) const {
  for (const FileResolutionAnswer& answer : *fileResolution) {
    if (answer.path == path && answer.assetType == type) return answer.answer;
  }
  return {};
}

void MemScene::Log(LogType type, std::u16string_view title, std::u16string_view text) {
  log.push_back({type, std::u16string(title), std::u16string(text)});
}

void MemScene::DecomposeMatrix(const Matrix3& matrix, Point3& position, Quat& rotation,
                               Point3& scale) const {
  position = matrix.GetTrans();
  Point3 rows[3] = {matrix.GetRow(0), matrix.GetRow(1), matrix.GetRow(2)};
  float lengths[3];
  for (int i = 0; i < 3; ++i) {
    lengths[i] = std::sqrt(rows[i].x * rows[i].x + rows[i].y * rows[i].y + rows[i].z * rows[i].z);
  }
  const Point3& a = rows[0];
  const Point3& b = rows[1];
  const Point3& c = rows[2];
  float determinant =
      a.x * (b.y * c.z - b.z * c.y) - a.y * (b.x * c.z - b.z * c.x) + a.z * (b.x * c.y - b.y * c.x);
  if (determinant < 0) lengths[0] = -lengths[0];
  scale = {lengths[0], lengths[1], lengths[2]};
  // The host's quaternions turn by the left-hand rule: +90 degrees about Z is (0, 0, -0.707107,
  // 0.707107), the conjugate of the usual one. With the axis images as columns of `m`, the usual
  // extraction below yields exactly that.
  float m[3][3];
  for (int i = 0; i < 3; ++i) {
    float length = lengths[i] != 0 ? lengths[i] : 1;
    m[0][i] = rows[i].x / length;
    m[1][i] = rows[i].y / length;
    m[2][i] = rows[i].z / length;
  }
  float trace = m[0][0] + m[1][1] + m[2][2];
  if (trace > 0) {
    float s = std::sqrt(trace + 1) * 2;
    rotation = {(m[1][2] - m[2][1]) / s, (m[2][0] - m[0][2]) / s, (m[0][1] - m[1][0]) / s, s / 4};
  } else if (m[0][0] > m[1][1] && m[0][0] > m[2][2]) {
    float s = std::sqrt(1 + m[0][0] - m[1][1] - m[2][2]) * 2;
    rotation = {s / 4, (m[1][0] + m[0][1]) / s, (m[2][0] + m[0][2]) / s, (m[1][2] - m[2][1]) / s};
  } else if (m[1][1] > m[2][2]) {
    float s = std::sqrt(1 + m[1][1] - m[0][0] - m[2][2]) * 2;
    rotation = {(m[1][0] + m[0][1]) / s, s / 4, (m[2][1] + m[1][2]) / s, (m[2][0] - m[0][2]) / s};
  } else {
    float s = std::sqrt(1 + m[2][2] - m[0][0] - m[1][1]) * 2;
    rotation = {(m[2][0] + m[0][2]) / s, (m[2][1] + m[1][2]) / s, s / 4, (m[0][1] - m[1][0]) / s};
  }
}

template <class T>
T& MemScene::Register(std::vector<std::unique_ptr<T>>& list, std::string id) {
  auto& item = list.emplace_back(std::make_unique<T>());
  item->data.id = std::move(id);
  if (!item->data.id.empty()) byId_.Set(item->data.id, item.get());
  if (item->data.id.starts_with(kConvertedIdPrefix)) convertedIdsInFile_ = true;
  return *item;
}

MemNode& MemScene::AddNode(std::string id) {
  MemNode& node = Register(nodes_, std::move(id));
  node.scene = this;
  return node;
}

MemObject& MemScene::AddObject(std::string id) {
  MemObject& object = Register(objects_, std::move(id));
  object.scene = this;
  return object;
}

MemDerivedObject& MemScene::AddDerivedObject(std::string id) {
  MemDerivedObject& object = Register(derivedObjects_, std::move(id));
  object.data.superClassId = GEN_DERIVOB_CLASS_ID;
  return object;
}

MemModifier& MemScene::AddModifier(std::string id) {
  return Register(modifiers_, std::move(id));
}

MemMtl& MemScene::AddMaterial(std::string id) {
  MemMtl& material = Register(materials_, std::move(id));
  material.scene = this;
  material.data.superClassId = MATERIAL_CLASS_ID;
  return material;
}

MemTexmap& MemScene::AddMap(std::string id) {
  MemTexmap& map = Register(maps_, std::move(id));
  map.scene = this;
  map.data.superClassId = TEXMAP_CLASS_ID;
  return map;
}

Animatable* MemScene::FindById(const std::string& id) const {
  return byId_.Find(id);
}

namespace {

template <class List, class Visit>
void ForEachData(List& list, Visit visit) {
  for (auto& item : list)
    visit(item->data, *item);
}

}  // namespace

void MemScene::AssignMissingHandles() {
  IndexHandles();
  AnimHandle next = 1;
  auto assign = [&](AnimatableData& data, Animatable& animatable) {
    if (data.handle != 0 || data.handleGiven) return;
    while (byHandle_.Find(next) != nullptr)
      ++next;
    data.handle = next++;
    *byHandle_.TryEmplace(data.handle).first = &animatable;
  };
  ForEachData(nodes_, assign);
  ForEachData(objects_, assign);
  ForEachData(derivedObjects_, assign);
  ForEachData(modifiers_, assign);
  ForEachData(materials_, assign);
  ForEachData(maps_, assign);
  nextFreeHandle_ = std::max(nextFreeHandle_, next);
}

void MemScene::IndexHandles() {
  byHandle_.clear();
  convertedByHandle_.clear();  // converted meshes are among the objects indexed below
  byHandle_.Reserve(nodes_.size() + objects_.size() + derivedObjects_.size() + modifiers_.size() +
                    materials_.size() + maps_.size());
  auto index = [&](AnimatableData& data, Animatable& animatable) {
    if (data.handle == 0) return;
    *byHandle_.TryEmplace(data.handle).first = &animatable;
    nextFreeHandle_ = std::max(nextFreeHandle_, data.handle + 1);
  };
  ForEachData(nodes_, index);
  ForEachData(objects_, index);
  ForEachData(derivedObjects_, index);
  ForEachData(modifiers_, index);
  ForEachData(materials_, index);
  ForEachData(maps_, index);
}

const AnimatableData* MemScene::DataOf(const Animatable* animatable) {
  if (auto* node = dynamic_cast<const MemNode*>(animatable)) return &node->data;
  if (auto* object = dynamic_cast<const MemObject*>(animatable)) return &object->data;
  if (auto* derived = dynamic_cast<const MemDerivedObject*>(animatable)) return &derived->data;
  if (auto* modifier = dynamic_cast<const MemModifier*>(animatable)) return &modifier->data;
  if (auto* material = dynamic_cast<const MemMtl*>(animatable)) return &material->data;
  if (auto* map = dynamic_cast<const MemTexmap*>(animatable)) return &map->data;
  return nullptr;
}

void MemScene::RecordRename(const AnimatableData& data, std::u16string_view oldName,
                            std::u16string_view newName) {
  renames.push_back({data.id, std::u16string(oldName), std::u16string(newName)});
}

void MemScene::RecordObjectReplacement(const MemNode& node, const Object* object) {
  const AnimatableData* data = DataOf(object);
  objectReplacements.push_back({node.data.id, data != nullptr ? data->id : std::string()});
}

MemObject& MemScene::AddConvertedObject(const MemObject& from) {
  std::string id;
  do {
    id = std::string(kConvertedIdPrefix) + std::to_string(++convertedCount_);
  } while (convertedIdsInFile_ && byId_.Find(id) != nullptr);
  // Not registered by id: it is no scene-file entity, and a mesh made only to be read and
  // deleted again would cost the id table an insertion and an erasure per object record.
  MemObject& converted = *objects_.emplace_back(std::make_unique<MemObject>());
  converted.data.id = std::move(id);
  converted.scene = this;
  converted.data.className = u"Editable Mesh";
  converted.data.classId = Class_ID{0x0009, 0};
  converted.data.superClassId = GEOMOBJECT_CLASS_ID;
  converted.mesh = from.mesh;
  converted.isTriObject = true;
  converted.data.handle = nextFreeHandle_++;
  *convertedByHandle_.TryEmplace(converted.data.handle).first = &converted;
  return converted;
}

void MemScene::DeleteObject(const MemObject& object) {
  // Searched from the back: a converted object that nobody took is usually the newest.
  auto found = std::find_if(objects_.rbegin(), objects_.rend(),
                            [&](const auto& item) { return item.get() == &object; });
  if (found == objects_.rend()) return;
  if (!convertedByHandle_.Erase(object.data.handle)) byHandle_.Erase(object.data.handle);
  if (convertedIdsInFile_ || !object.data.id.starts_with(kConvertedIdPrefix)) {
    byId_.Erase(object.data.id, &object);
  }
  objects_.erase(std::next(found).base());
}

}  // namespace orvane::host::memory
