#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <unordered_map>

#include "base/wide_text.h"
#include "host/file_read.h"
#include "host/memory/scene_file.h"
#include "host/memory/scene_file_json.h"
#include "host/memory/scene_file_names.h"

namespace orvane::host::memory {

namespace {

class Loader {
 public:
  Loader(const json& root, std::filesystem::path folder)
      : root_(root), folder_(std::move(folder)), scene_(std::make_unique<MemScene>()) {}

  std::unique_ptr<MemScene> Load() {
    Fields top(root_, "",
               {"format", "time", "unitScale", "file", "settingsDirectory", "environment", "nodes",
                "objects", "modifiers", "materials", "maps", "scripts", "fileResolution", "files",
                "export"});
    ReadFormat(top);
    DeclareAll(top);
    ReadSettings(top);
    for (auto& [fields, node] : nodes_)
      ReadNode(*fields, *node);
    for (auto& [fields, object] : objects_)
      ReadObject(*fields, *object);
    for (auto& [fields, object] : derived_)
      ReadDerivedObject(*fields, *object);
    for (auto& [fields, modifier] : modifiers_)
      ReadModifier(*fields, *modifier);
    for (auto& [fields, material] : materials_)
      ReadMaterial(*fields, *material);
    for (auto& [fields, map] : maps_)
      ReadMap(*fields, *map);
    CheckHierarchy();
    CheckModifierStacks();
    CheckHandles();
    scene_->AssignMissingHandles();
    return std::move(scene_);
  }

 private:
  template <class T>
  using Declared = std::vector<std::pair<std::unique_ptr<Fields>, T*>>;

  void ReadFormat(const Fields& top) {
    std::string format = ReadString(top.Get("format"), top.PathOf("format"));
    if (format != kSceneFormat) {
      Fail(top.PathOf("format"), "unsupported format \"" + format + "\" (expected \"" +
                                     std::string(kSceneFormat) + "\")");
    }
  }

  // First pass: every entity gets its id, so references may point forwards.
  void DeclareAll(const Fields& top) {
    Declare(top, "nodes",
            {"id", "handle", "name", "parent", "object", "worldState", "material", "target",
             "transform"},
            nodes_, [&](std::string id) { return &scene_->AddNode(std::move(id)); });
    DeclareObjects(top);
    Declare(top, "modifiers", {"id", "handle", "class", "classId", "superClass", "params"},
            modifiers_, [&](std::string id) { return &scene_->AddModifier(std::move(id)); });
    Declare(
        top, "materials",
        {"id", "handle", "class", "classId", "name", "params", "slots", "subMaterials", "standard"},
        materials_, [&](std::string id) { return &scene_->AddMaterial(std::move(id)); });
    Declare(top, "maps",
            {"id", "handle", "class", "classId", "name", "params", "slots", "bitmap", "curves"},
            maps_, [&](std::string id) { return &scene_->AddMap(std::move(id)); });
  }

  template <class T, class Make>
  void Declare(const Fields& top, std::string_view listKey,
               std::initializer_list<std::string_view> allowed, Declared<T>& declared, Make make) {
    const json* list = top.Find(listKey);
    if (list == nullptr) return;
    std::string listPath = top.PathOf(listKey);
    RequireArray(*list, listPath);
    for (size_t i = 0; i < list->size(); ++i) {
      auto fields = std::make_unique<Fields>((*list)[i], Element(listPath, i), allowed);
      std::string id = ReadId(*fields);
      T* entity = make(std::move(id));
      declared.emplace_back(std::move(fields), entity);
    }
  }

  void DeclareObjects(const Fields& top) {
    const json* list = top.Find("objects");
    if (list == nullptr) return;
    RequireArray(*list, "objects");
    for (size_t i = 0; i < list->size(); ++i) {
      const json& item = (*list)[i];
      std::string path = Element("objects", i);
      if (item.is_object() && item.contains("derived")) {
        auto fields =
            std::make_unique<Fields>(item, path,
                                     std::initializer_list<std::string_view>{
                                         "id", "handle", "class", "classId", "params", "derived"});
        derived_.emplace_back(nullptr, &scene_->AddDerivedObject(ReadId(*fields)));
        derived_.back().first = std::move(fields);
      } else {
        auto fields = std::make_unique<Fields>(item, path,
                                               std::initializer_list<std::string_view>{
                                                   "id", "handle", "class", "classId", "superClass",
                                                   "params", "mesh", "triObject", "camera"});
        objects_.emplace_back(nullptr, &scene_->AddObject(ReadId(*fields)));
        objects_.back().first = std::move(fields);
      }
    }
  }

  std::string ReadId(const Fields& fields) {
    std::string path = fields.PathOf("id");
    std::string id = ReadString(fields.Get("id"), path);
    if (id.empty()) Fail(path, "an id must not be empty");
    auto [existing, inserted] = idPaths_.emplace(id, path);
    if (!inserted)
      Fail(path, "duplicate id \"" + id + "\" (first used at " + existing->second + ")");
    return id;
  }

  void ReadSettings(const Fields& top) {
    if (const json* time = top.Find("time")) scene_->time = ReadInt(*time, "time");
    if (const json* scale = top.Find("unitScale"))
      scene_->metresPerUnit = ReadDouble(*scale, "unitScale");
    if (const json* file = top.Find("file")) {
      Fields fields(*file, "file", {"name", "path"});
      if (const json* name = fields.Find("name"))
        scene_->fileName = ReadText(*name, fields.PathOf("name"));
      if (const json* path = fields.Find("path"))
        scene_->filePath = ReadText(*path, fields.PathOf("path"));
    }
    if (const json* dir = top.Find("settingsDirectory")) {
      scene_->settingsDirectory = ReadText(*dir, "settingsDirectory");
    }
    if (const json* environment = top.Find("environment")) ReadEnvironment(*environment);
    if (const json* scripts = top.Find("scripts")) ReadScripts(*scripts);
    if (const json* resolution = top.Find("fileResolution")) ReadFileResolution(*resolution);
    if (const json* files = top.Find("files")) ReadFiles(*files);
    if (const json* behaviour = top.Find("export")) {
      scene_->exportBehaviour =
          ReadName(kExportBehaviours, *behaviour, "export", "export behaviour");
    }
  }

  void ReadEnvironment(const json& value) {
    Fields fields(value, "environment", {"background", "useMap", "map"});
    if (const json* background = fields.Find("background")) {
      scene_->background = ReadColor(*background, fields.PathOf("background"));
    }
    if (const json* useMap = fields.Find("useMap")) {
      scene_->useEnvironmentMap = ReadBool(*useMap, fields.PathOf("useMap"));
    }
    if (const json* map = fields.Find("map"))
      scene_->environmentMap = ResolveMap(*map, fields.PathOf("map"));
  }

  void ReadScripts(const json& value) {
    RequireArray(value, "scripts");
    for (size_t i = 0; i < value.size(); ++i) {
      Fields fields(value[i], Element("scripts", i), {"contains", "reply", "fails"});
      ScriptRule rule;
      const json& contains = RequireArray(fields.Get("contains"), fields.PathOf("contains"));
      for (size_t k = 0; k < contains.size(); ++k) {
        rule.contains.push_back(ReadText(contains[k], Element(fields.PathOf("contains"), k)));
      }
      if (const json* fails = fields.Find("fails"))
        rule.fails = ReadBool(*fails, fields.PathOf("fails"));
      const json* reply = fields.Find("reply");
      if (rule.fails && reply != nullptr)
        Fail(fields.PathOf("reply"), "a failing run has no reply");
      if (!rule.fails && reply == nullptr)
        Fail(fields.path(), "missing key \"reply\" (or \"fails\": true)");
      if (reply != nullptr && !reply->is_null())
        rule.reply = ReadText(*reply, fields.PathOf("reply"));
      scene_->scriptRules.push_back(std::move(rule));
    }
  }

  void ReadFileResolution(const json& value) {
    if (value.is_null()) {
      scene_->fileResolution.reset();  // the service is not available
      return;
    }
    RequireArray(value, "fileResolution");
    for (size_t i = 0; i < value.size(); ++i) {
      Fields fields(value[i], Element("fileResolution", i), {"path", "assetType", "answer"});
      FileResolutionAnswer answer;
      answer.path = ReadText(fields.Get("path"), fields.PathOf("path"));
      answer.assetType =
          ReadName(kAssetTypes, fields.Get("assetType"), fields.PathOf("assetType"), "asset type");
      answer.answer = ReadText(fields.Get("answer"), fields.PathOf("answer"));
      scene_->fileResolution->push_back(std::move(answer));
    }
  }

  void ReadFiles(const json& value) {
    if (!value.is_object()) Fail("files", "expected an object");
    for (const auto& item : value.items()) {
      std::string local = ReadString(item.value(), Member("files", item.key()));
      std::u16string hostPath = FromUtf8(item.key());
      scene_->fileAliases.emplace_back(hostPath, local);
      scene_->files.AddAlias(
          hostPath, folder_ / std::filesystem::path(std::u8string(local.begin(), local.end())));
    }
  }

  void ReadCommon(const Fields& fields, AnimatableData& data, bool classRequired) {
    if (const json* handle = fields.Find("handle")) {
      data.handle = static_cast<AnimHandle>(
          ReadInteger(*handle, fields.PathOf("handle"), 0, std::numeric_limits<int64_t>::max()));
      data.handleGiven = true;
      handlePaths_.emplace_back(data.handle, fields.PathOf("handle"));
    }
    if (const json* className = fields.Find("class")) {
      data.className = ReadText(*className, fields.PathOf("class"));
    } else if (classRequired) {
      Fail(fields.path(), "missing key \"class\"");
    }
    if (const json* classId = fields.Find("classId")) {
      std::string path = fields.PathOf("classId");
      if (!classId->is_array() || classId->size() != 2) Fail(path, "expected an array of 2 ids");
      data.classId = {ReadIdPart((*classId)[0], Element(path, 0)),
                      ReadIdPart((*classId)[1], Element(path, 1))};
    }
    if (const json* params = fields.Find("params"))
      ReadParamBlocks(*params, fields.PathOf("params"), data);
  }

  SClass_ID ReadSuperClass(const json& value, const std::string& path) {
    if (value.is_number()) return static_cast<SClass_ID>(ReadIdPart(value, path));
    return ReadName(kSuperClasses, value, path, "super class");
  }

  void ReadNode(const Fields& fields, MemNode& node) {
    node.data.className = u"Node";
    node.data.superClassId = 0x1;
    ReadCommon(fields, node.data, false);
    if (const json* name = fields.Find("name")) node.name = ReadText(*name, fields.PathOf("name"));
    MemNode* parent = static_cast<MemNode*>(scene_->GetRootNode());
    if (const json* parentId = fields.Find("parent"); parentId != nullptr && !parentId->is_null()) {
      parent = Resolve<MemNode>(*parentId, fields.PathOf("parent"), "node");
    }
    node.parent = parent;
    parent->children.push_back(&node);
    if (const json* object = fields.Find("object"))
      node.objectRef = Resolve<Object>(*object, fields.PathOf("object"), "object");
    if (const json* state = fields.Find("worldState")) {
      node.worldStateOverride = Resolve<Object>(*state, fields.PathOf("worldState"), "object");
    }
    if (const json* material = fields.Find("material")) {
      node.material = Resolve<Mtl>(*material, fields.PathOf("material"), "material");
    }
    if (const json* target = fields.Find("target"))
      node.target = Resolve<INode>(*target, fields.PathOf("target"), "node");
    if (const json* transform = fields.Find("transform")) {
      node.transform = ReadMatrix(*transform, fields.PathOf("transform"));
    }
  }

  void ReadObject(const Fields& fields, MemObject& object) {
    ReadCommon(fields, object.data, true);
    object.data.superClassId =
        ReadSuperClass(fields.Get("superClass"), fields.PathOf("superClass"));
    if (const json* mesh = fields.Find("mesh"))
      object.mesh = ReadMesh(*mesh, fields.PathOf("mesh"));
    if (const json* tri = fields.Find("triObject")) {
      object.isTriObject = ReadBool(*tri, fields.PathOf("triObject"));
      if (object.isTriObject && !object.mesh)
        Fail(fields.PathOf("triObject"), "a triangle-mesh object needs a \"mesh\"");
    }
    if (const json* camera = fields.Find("camera"))
      object.camera = ReadCamera(*camera, fields.PathOf("camera"));
  }

  void ReadDerivedObject(const Fields& fields, MemDerivedObject& object) {
    object.data.className = u"Derived_Object";
    ReadCommon(fields, object.data, false);
    Fields derived(fields.Get("derived"), fields.PathOf("derived"), {"object", "modifiers"});
    object.objRef = Resolve<Object>(derived.Get("object"), derived.PathOf("object"), "object");
    if (const json* modifiers = derived.Find("modifiers")) {
      std::string path = derived.PathOf("modifiers");
      RequireArray(*modifiers, path);
      for (size_t i = 0; i < modifiers->size(); ++i) {
        object.modifiers.push_back(
            Resolve<Modifier>((*modifiers)[i], Element(path, i), "modifier"));
      }
    }
  }

  void ReadModifier(const Fields& fields, MemModifier& modifier) {
    modifier.data.superClassId = OSM_CLASS_ID;
    ReadCommon(fields, modifier.data, true);
    if (const json* superClass = fields.Find("superClass")) {
      modifier.data.superClassId = ReadSuperClass(*superClass, fields.PathOf("superClass"));
    }
  }

  template <class T>
  void ReadMtlBase(const Fields& fields, T& item) {
    ReadCommon(fields, item.data, true);
    if (const json* name = fields.Find("name")) item.name = ReadText(*name, fields.PathOf("name"));
    if (const json* slots = fields.Find("slots"))
      item.slots = ReadSlots(*slots, fields.PathOf("slots"));
  }

  void ReadMaterial(const Fields& fields, MemMtl& material) {
    ReadMtlBase(fields, material);
    if (const json* subs = fields.Find("subMaterials")) {
      std::string path = fields.PathOf("subMaterials");
      RequireArray(*subs, path);
      for (size_t i = 0; i < subs->size(); ++i) {
        material.subMaterials.push_back(Resolve<Mtl>((*subs)[i], Element(path, i), "material"));
      }
    }
    if (const json* standard = fields.Find("standard")) {
      material.standard = ReadStandard(*standard, fields.PathOf("standard"));
    }
  }

  void ReadMap(const Fields& fields, MemTexmap& map) {
    ReadMtlBase(fields, map);
    if (const json* bitmap = fields.Find("bitmap"))
      map.bitmap = ReadBitmap(*bitmap, fields.PathOf("bitmap"));
    if (const json* curves = fields.Find("curves")) {
      Fields curveFields(*curves, fields.PathOf("curves"), {"mono", "rgb"});
      if (const json* mono = curveFields.Find("mono"))
        map.monoCurves = ReadCurveCtl(*mono, curveFields.PathOf("mono"));
      if (const json* rgb = curveFields.Find("rgb"))
        map.rgbCurves = ReadCurveCtl(*rgb, curveFields.PathOf("rgb"));
    }
  }

  std::vector<MapSlot> ReadSlots(const json& value, const std::string& path) {
    RequireArray(value, path);
    std::vector<MapSlot> slots;
    for (size_t i = 0; i < value.size(); ++i) {
      Fields fields(value[i], Element(path, i), {"name", "map", "amount", "enabled"});
      MapSlot slot;
      slot.name = ReadText(fields.Get("name"), fields.PathOf("name"));
      if (const json* map = fields.Find("map")) slot.map = ResolveMap(*map, fields.PathOf("map"));
      if (const json* amount = fields.Find("amount"))
        slot.amount = ReadFloat(*amount, fields.PathOf("amount"));
      if (const json* enabled = fields.Find("enabled"))
        slot.enabled = ReadBool(*enabled, fields.PathOf("enabled"));
      slots.push_back(std::move(slot));
    }
    return slots;
  }

  StandardMaterialData ReadStandard(const json& value, const std::string& path) {
    Fields fields(value, path,
                  {"diffuse", "specular", "filter", "shininess", "shininessStrength", "opacity",
                   "selfIllum", "ior", "twoSided", "wire"});
    StandardMaterialData standard;
    ReadOptional(fields, "diffuse", standard.diffuse, ReadColor);
    ReadOptional(fields, "specular", standard.specular, ReadColor);
    ReadOptional(fields, "filter", standard.filter, ReadColor);
    ReadOptional(fields, "shininess", standard.shininess, ReadFloat);
    ReadOptional(fields, "shininessStrength", standard.shininessStrength, ReadFloat);
    ReadOptional(fields, "opacity", standard.opacity, ReadFloat);
    ReadOptional(fields, "selfIllum", standard.selfIllum, ReadFloat);
    ReadOptional(fields, "ior", standard.ior, ReadFloat);
    ReadOptional(fields, "twoSided", standard.twoSided, ReadBool);
    ReadOptional(fields, "wire", standard.wire, ReadBool);
    return standard;
  }

  BitmapData ReadBitmap(const json& value, const std::string& path) {
    Fields fields(value, path, {"mapName", "loadedGamma", "uvGen"});
    BitmapData bitmap;
    ReadOptional(fields, "mapName", bitmap.mapName, ReadText);
    if (const json* gamma = fields.Find("loadedGamma"); gamma != nullptr && !gamma->is_null()) {
      bitmap.loadedGamma = ReadFloat(*gamma, fields.PathOf("loadedGamma"));
    }
    if (const json* uvGen = fields.Find("uvGen"); uvGen != nullptr && !uvGen->is_null()) {
      Fields uv(*uvGen, fields.PathOf("uvGen"),
                {"uScale", "vScale", "uOffset", "vOffset", "wAngle", "tiling", "mapChannel"});
      UVGenData data;
      ReadOptional(uv, "uScale", data.uScale, ReadFloat);
      ReadOptional(uv, "vScale", data.vScale, ReadFloat);
      ReadOptional(uv, "uOffset", data.uOffset, ReadFloat);
      ReadOptional(uv, "vOffset", data.vOffset, ReadFloat);
      ReadOptional(uv, "wAngle", data.wAngle, ReadFloat);
      ReadOptional(uv, "tiling", data.tiling, ReadInt);
      ReadOptional(uv, "mapChannel", data.mapChannel, ReadInt);
      bitmap.uvGen = data;
    }
    return bitmap;
  }

  std::unique_ptr<MemCurveCtl> ReadCurveCtl(const json& value, const std::string& path) {
    RequireArray(value, path);
    auto control = std::make_unique<MemCurveCtl>();
    for (size_t c = 0; c < value.size(); ++c) {
      const json& curve = value[c];
      std::string curvePath = Element(path, c);
      if (curve.is_null()) {
        control->curves.push_back(nullptr);
        continue;
      }
      RequireArray(curve, curvePath);
      auto points = std::make_unique<MemCurve>();
      for (size_t p = 0; p < curve.size(); ++p) {
        std::string pointPath = Element(curvePath, p);
        if (!curve[p].is_array() || curve[p].size() != 2)
          Fail(pointPath, "expected a point [x, y]");
        float x = ReadFloat(curve[p][0], Element(pointPath, 0));
        if (!points->points.empty() && x < points->points.back().first) {
          Fail(Element(pointPath, 0), "curve points must be in ascending x");
        }
        points->points.emplace_back(x, ReadFloat(curve[p][1], Element(pointPath, 1)));
      }
      control->curves.push_back(std::move(points));
    }
    return control;
  }

  CameraData ReadCamera(const json& value, const std::string& path) {
    Fields fields(value, path,
                  {"fov", "ortho", "targetDistance", "manualClip", "nearClip", "farClip"});
    CameraData camera;
    ReadOptional(fields, "fov", camera.fov, ReadFloat);
    ReadOptional(fields, "ortho", camera.ortho, ReadBool);
    ReadOptional(fields, "targetDistance", camera.targetDistance, ReadFloat);
    ReadOptional(fields, "manualClip", camera.manualClip, ReadBool);
    ReadOptional(fields, "nearClip", camera.nearClip, ReadFloat);
    ReadOptional(fields, "farClip", camera.farClip, ReadFloat);
    return camera;
  }

  MemMesh ReadMesh(const json& value, const std::string& path) {
    Fields fields(value, path, {"vertices", "faces", "vertexColors", "colorFaces"});
    MemMesh mesh;
    mesh.vertices = ReadPointList(fields, "vertices");
    std::string facesPath = fields.PathOf("faces");
    const json& faces = RequireArray(fields.Get("faces"), facesPath);
    mesh.faces.reserve(faces.size());
    for (size_t f = 0; f < faces.size(); ++f) {
      const json& face = faces[f];
      if (auto plain = PlainFace(face, mesh.vertices.size())) {
        mesh.faces.push_back(*plain);
        continue;
      }
      std::string facePath = Element(facesPath, f);
      if (!face.is_array() || (face.size() != 3 && face.size() != 4)) {
        Fail(facePath, "expected [a, b, c] or [a, b, c, materialId]");
      }
      MeshFace meshFace;
      meshFace.v = ReadIndices(face, facePath, mesh.vertices.size(), "vertex", "vertices");
      if (face.size() == 4)
        meshFace.matId =
            static_cast<uint16_t>(ReadInteger(face[3], Element(facePath, 3), 0, 65535));
      mesh.faces.push_back(meshFace);
    }
    mesh.vertexColors = ReadPointList(fields, "vertexColors");
    if (const json* colorFaces = fields.Find("colorFaces")) {
      RequireArray(*colorFaces, fields.PathOf("colorFaces"));
      for (size_t f = 0; f < colorFaces->size(); ++f) {
        std::string facePath = Element(fields.PathOf("colorFaces"), f);
        if (!(*colorFaces)[f].is_array() || (*colorFaces)[f].size() != 3)
          Fail(facePath, "expected [a, b, c]");
        mesh.colorFaces.push_back(ReadIndices((*colorFaces)[f], facePath, mesh.vertexColors.size(),
                                              "vertex colour", "vertex colours"));
      }
    }
    return mesh;
  }

  std::vector<Point3> ReadPointList(const Fields& fields, std::string_view key) {
    std::vector<Point3> points;
    const json* list = fields.Find(key);
    if (list == nullptr) return points;
    std::string path = fields.PathOf(key);
    RequireArray(*list, path);
    points.reserve(list->size());
    for (size_t i = 0; i < list->size(); ++i) {
      auto plain = PlainTriple((*list)[i]);
      points.push_back(plain ? Point3{(*plain)[0], (*plain)[1], (*plain)[2]}
                             : ReadPoint3((*list)[i], Element(path, i)));
    }
    return points;
  }

  // A face of valid vertex indices and material id, or nullopt for one that needs reading with
  // its path.
  static std::optional<MeshFace> PlainFace(const json& face, size_t vertexCount) {
    if (!face.is_array() || (face.size() != 3 && face.size() != 4)) return std::nullopt;
    MeshFace plain;
    for (size_t k = 0; k < face.size(); ++k) {
      if (!face[k].is_number_unsigned()) return std::nullopt;
      uint64_t number = face[k].get<uint64_t>();
      if (k < 3 && (number >= vertexCount || number > INT32_MAX)) return std::nullopt;
      if (k == 3 && number > 65535) return std::nullopt;
      if (k < 3)
        plain.v[k] = static_cast<int>(number);
      else
        plain.matId = static_cast<uint16_t>(number);
    }
    return plain;
  }

  std::array<int, 3> ReadIndices(const json& face, const std::string& path, size_t count,
                                 const std::string& what, const std::string& plural) {
    std::array<int, 3> indices{};
    for (size_t k = 0; k < 3; ++k) {
      int64_t index =
          ReadInteger(face[k], Element(path, k), 0, std::numeric_limits<int32_t>::max());
      if (static_cast<size_t>(index) >= count) {
        Fail(Element(path, k), what + " index " + std::to_string(index) + " is out of range (" +
                                   std::to_string(count) + " " + plural + ")");
      }
      indices[k] = static_cast<int>(index);
    }
    return indices;
  }

  void ReadParamBlocks(const json& value, const std::string& path, AnimatableData& data) {
    RequireArray(value, path);
    for (size_t b = 0; b < value.size(); ++b) {
      std::string blockPath = Element(path, b);
      if (value[b].is_null()) {
        data.blocks.push_back(nullptr);
        continue;
      }
      RequireArray(value[b], blockPath);
      auto block = std::make_unique<MemParamBlock>();
      for (size_t i = 0; i < value[b].size(); ++i) {
        block->params.push_back(ReadParam(value[b][i], Element(blockPath, i)));
      }
      data.blocks.push_back(std::move(block));
    }
  }

  MemParam ReadParam(const json& value, const std::string& path) {
    Fields fields(value, path, {"name", "type", "value"});
    MemParam param;
    const json& name = fields.Get("name");
    if (!name.is_null()) param.name = ReadText(name, fields.PathOf("name"));
    const json& type = fields.Get("type");
    bool byCode = type.is_number_integer();
    param.type = byCode ? static_cast<ParamType2>(ReadInteger(type, fields.PathOf("type"), 0,
                                                              std::numeric_limits<int>::max()))
                        : ReadParamType(type, fields.PathOf("type"));
    const json& paramValue = fields.Get("value");
    std::string valuePath = fields.PathOf("value");
    // A type given by its code holds no readable value, whatever the code.
    int baseType = byCode ? -1 : param.type & ~TYPE_TAB;
    if ((param.type & TYPE_TAB) != 0) {
      RequireArray(paramValue, valuePath);
      for (size_t i = 0; i < paramValue.size(); ++i) {
        param.elements.push_back(ReadElement(paramValue[i], Element(valuePath, i), baseType));
      }
    } else {
      param.elements.push_back(ReadElement(paramValue, valuePath, baseType));
    }
    return param;
  }

  ParamType2 ReadParamType(const json& value, const std::string& path) {
    std::string name = ReadString(value, path);
    bool table = name.size() > 4 && name.compare(name.size() - 4, 4, "_tab") == 0;
    std::string base = table ? name.substr(0, name.size() - 4) : name;
    for (const auto& [typeName, code] : kParamTypes) {
      if (base == typeName) return static_cast<ParamType2>(table ? (code | TYPE_TAB) : code);
    }
    Fail(path, "unknown parameter type \"" + name + "\"");
  }

  ParamElement ReadElement(const json& value, const std::string& path, int baseType) {
    switch (baseType) {
      case TYPE_FLOAT:
      case TYPE_ANGLE:
      case TYPE_PCNT_FRAC:
      case TYPE_WORLD: return ReadFloat(value, path);
      case TYPE_INT:
      case TYPE_INDEX: return ReadInt(value, path);
      case TYPE_BOOL:
        // A boolean is stored as an integer; any integer may be given.
        return value.is_boolean() ? static_cast<int>(value.get<bool>()) : ReadInt(value, path);
      case TYPE_RGBA:
      case TYPE_FRGBA: return ReadColor(value, path);
      case TYPE_POINT3: return ReadPoint3(value, path);
      case TYPE_STRING:
      case TYPE_FILENAME:
        if (value.is_null()) return std::optional<std::u16string>();
        return std::optional<std::u16string>(ReadText(value, path));
      case TYPE_MTL: return static_cast<Animatable*>(Resolve<Mtl>(value, path, "material"));
      case TYPE_TEXMAP: return static_cast<Animatable*>(ResolveMap(value, path));
      case TYPE_INODE: return static_cast<Animatable*>(Resolve<INode>(value, path, "node"));
      case TYPE_REFTARG: return Resolve<Animatable>(value, path, "animatable");
      case TYPE_MATRIX3: return ReadMatrix(value, path);
      default:
        if (!value.is_null()) Fail(path, "this parameter type holds no value; write null");
        return std::monostate();
    }
  }

  template <class Value, class Reader>
  void ReadOptional(const Fields& fields, std::string_view key, Value& target, Reader read) {
    if (const json* value = fields.Find(key)) target = read(*value, fields.PathOf(key));
  }

  // null, or the id of an animatable of type T.
  template <class T>
  T* Resolve(const json& value, const std::string& path, const std::string& what) {
    if (value.is_null()) return nullptr;
    std::string id = ReadString(value, path);
    T* found = dynamic_cast<T*>(scene_->FindById(id));
    if (found == nullptr) Fail(path, "no " + what + " with id \"" + id + "\"");
    return found;
  }

  Texmap* ResolveMap(const json& value, const std::string& path) {
    return Resolve<Texmap>(value, path, "map");
  }

  // Follows each chain once: a link already known to lead out ends the walk, so the check stays
  // linear however long the chains are.
  template <class Link, class T, class Next>
  void CheckChains(const Declared<T>& declared, Next next, const std::string& key,
                   const std::string& what) {
    std::unordered_map<Link, bool> leadsOut;  // false while the link is on the current path
    for (const auto& [fields, start] : declared) {
      std::vector<Link> path;
      for (Link link = start; link != nullptr; link = next(link)) {
        auto known = leadsOut.find(link);
        if (known != leadsOut.end()) {
          if (!known->second) {
            Fail(fields->PathOf(key),
                 "the " + what + " has a cycle through \"" + start->data.id + "\"");
          }
          break;
        }
        leadsOut.emplace(link, false);
        path.push_back(link);
      }
      for (Link link : path)
        leadsOut[link] = true;
    }
  }

  void CheckHierarchy() {
    CheckChains<const MemNode*>(
        nodes_, [](const MemNode* node) -> const MemNode* { return node->parent; }, "parent",
        "node hierarchy");
  }

  void CheckModifierStacks() {
    CheckChains<Object*>(
        derived_,
        [](Object* object) -> Object* {
          IDerivedObject* derived = object->AsDerivedObject();
          return derived != nullptr ? derived->GetObjRef() : nullptr;
        },
        "derived", "modifier stack");
  }

  void CheckHandles() {
    std::map<AnimHandle, std::string> seen;
    for (const auto& [handle, path] : handlePaths_) {
      if (handle == 0) continue;
      auto [existing, inserted] = seen.emplace(handle, path);
      if (!inserted) {
        Fail(path, "duplicate handle " + std::to_string(handle) + " (first used at " +
                       existing->second + ")");
      }
    }
  }

  const json& root_;
  std::filesystem::path folder_;
  std::unique_ptr<MemScene> scene_;
  std::map<std::string, std::string> idPaths_;
  std::vector<std::pair<AnimHandle, std::string>> handlePaths_;
  Declared<MemNode> nodes_;
  Declared<MemObject> objects_;
  Declared<MemDerivedObject> derived_;
  Declared<MemModifier> modifiers_;
  Declared<MemMtl> materials_;
  Declared<MemTexmap> maps_;
};

}  // namespace

SceneLoadResult LoadSceneText(std::string_view text, const std::filesystem::path& folder) {
  SceneLoadResult result;
  try {
    json root = ParseStrictly(text);
    result.scene = Loader(root, folder).Load();
  } catch (const json::exception& error) {
    // Malformed text, and numbers too large for any JSON number type.
    result.error = DescribeJsonError(error);
  } catch (const SceneFileError& error) {
    result.error = error.what();
  }
  return result;
}

SceneLoadResult LoadSceneFile(const std::filesystem::path& file) {
  FileRead read = ReadRegularFile(file, std::numeric_limits<uint64_t>::max());
  if (!read.bytes) return {nullptr, file.string() + ": " + DescribeFileReadError(read.error)};
  SceneLoadResult result = LoadSceneText(*read.bytes, file.parent_path());
  if (!result.scene) result.error = file.string() + ": " + result.error;
  return result;
}

}  // namespace orvane::host::memory
