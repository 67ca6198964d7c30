#include <algorithm>
#include <atomic>
#include <cmath>
#include <exception>
#include <functional>
#include <limits>
#include <system_error>
#include <thread>

#include "base/flat_map.h"
#include "base/wide_text.h"
#include "host/file_bytes.h"
#include "host/file_read.h"
#include "host/memory/scene_file.h"
#include "host/memory/scene_file_json.h"
#include "host/memory/scene_file_names.h"

namespace orvane::host::memory {

namespace {

class Loader {
 public:
  Loader(JsonValue root, std::filesystem::path folder)
      : root_(root), folder_(std::move(folder)), scene_(std::make_unique<MemScene>()) {}

  std::unique_ptr<MemScene> Load() {
    Fields top(root_, "",
               {"format", "time", "unitScale", "file", "settingsDirectory", "environment", "nodes",
                "objects", "modifiers", "materials", "maps", "scripts", "fileResolution", "files",
                "export"});
    ReadFormat(top);
    DeclareAll(top);
    ReadSettings(top);
    ReadEntities();
    CheckHierarchy();
    CheckModifierStacks();
    CheckHandles();
    scene_->AssignMissingHandles();
    return std::move(scene_);
  }

 private:
  template <class T>
  using Declared = std::vector<std::pair<std::unique_ptr<Fields>, T*>>;

  // Reading the entities takes a third of a large scene's load, so two threads share it. Once
  // every id is declared, reading an entity changes nothing but the entity itself, except that a
  // node joins its parent's children in file order: the nodes are read as one task, every other
  // list in chunks, and each thread takes the next task until none is left. Of several failures,
  // the one reported is the one a read of the lists one after the other would have met first.
  void ReadEntities() {
    std::vector<ReadTask> tasks;
    tasks.push_back({[this] {
      for (auto& [fields, node] : nodes_)
        ReadNode(*fields, *node);
    }});
    AddChunks(tasks, objects_, &Loader::ReadObject);
    AddChunks(tasks, derived_, &Loader::ReadDerivedObject);
    AddChunks(tasks, modifiers_, &Loader::ReadModifier);
    AddChunks(tasks, materials_, &Loader::ReadMaterial);
    AddChunks(tasks, maps_, &Loader::ReadMap);

    std::atomic<size_t> next = 0;
    auto work = [&] {
      for (size_t task = next++; task < tasks.size(); task = next++) {
        try {
          tasks[task].read();
        } catch (...) {
          tasks[task].failure = std::current_exception();
        }
      }
    };
    std::thread helper;
    try {
      helper = std::thread(work);
    } catch (const std::system_error&) {
      // No second thread to be had: this one reads every task, which gives the same scene.
    }
    work();
    if (helper.joinable()) helper.join();
    for (const ReadTask& task : tasks) {
      if (task.failure) std::rethrow_exception(task.failure);
    }
  }

  struct ReadTask {
    std::function<void()> read;
    std::exception_ptr failure = nullptr;
  };

  template <class T>
  void AddChunks(std::vector<ReadTask>& tasks, Declared<T>& declared,
                 void (Loader::*read)(const Fields&, T&)) {
    constexpr size_t kChunk = 512;
    for (size_t first = 0; first < declared.size(); first += kChunk) {
      size_t end = std::min(first + kChunk, declared.size());
      tasks.push_back({[this, &declared, read, first, end] {
        for (size_t i = first; i < end; ++i)
          (this->*read)(*declared[i].first, *declared[i].second);
      }});
    }
  }

  void ReadFormat(const Fields& top) {
    std::string format = ReadString(top.Get("format"), top.PathOf("format"));
    if (format != kSceneFormat) {
      Fail(top.PathOf("format"), "unsupported format \"" + format + "\" (expected \"" +
                                     std::string(kSceneFormat) + "\")");
    }
  }

  // First pass: every entity gets its id, so references may point forwards.
  void DeclareAll(const Fields& top) {
    size_t entities = 0;
    for (std::string_view list : {"nodes", "objects", "modifiers", "materials", "maps"}) {
      std::optional<JsonValue> found = top.Find(list);
      if (found && found->IsArray()) entities += found->size();
    }
    scene_->ReserveIds(entities);
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
    std::optional<JsonValue> list = top.Find(listKey);
    if (!list) return;
    JsonPath listPath = top.PathOf(listKey);
    RequireArray(*list, listPath);
    JsonElements items = list->Elements();
    JsonElements::Iterator ahead = StartIdLookahead(items);
    for (auto [i, item] : items) {
      PrefetchIdAhead(ahead, items);
      auto fields = std::make_unique<Fields>(item, Element(listPath, i), allowed);
      std::string id = ReadId(*fields);
      T* entity = make(std::move(id));
      declared.emplace_back(std::move(fields), entity);
    }
  }

  void DeclareObjects(const Fields& top) {
    std::optional<JsonValue> list = top.Find("objects");
    if (!list) return;
    RequireArray(*list, "objects");
    JsonElements items = list->Elements();
    JsonElements::Iterator ahead = StartIdLookahead(items);
    for (auto [i, item] : items) {
      PrefetchIdAhead(ahead, items);
      JsonPath path = Element("objects", i);
      if (item.IsObject() && item.Find("derived")) {
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

  // Every id declared is looked up in a table far larger than the caches, one wait for memory
  // per entity: the slot of the id a few entities ahead is asked for while this one is read.
  static constexpr int kIdsAhead = 8;
  JsonElements::Iterator StartIdLookahead(const JsonElements& items) const {
    JsonElements::Iterator ahead = items.begin();
    for (int i = 0; i < kIdsAhead; ++i)
      PrefetchIdAhead(ahead, items);
    return ahead;
  }
  void PrefetchIdAhead(JsonElements::Iterator& ahead, const JsonElements& items) const {
    if (!(ahead != items.end())) return;
    JsonValue item = (*ahead).value;
    if (item.IsObject()) {
      std::optional<JsonValue> id = item.Find("id");
      if (id && id->IsString()) scene_->PrefetchId(id->String());
    }
    ++ahead;
  }

  std::string ReadId(const Fields& fields) {
    JsonPath path = fields.PathOf("id");
    std::string id = ReadString(fields.Get("id"), path);
    if (id.empty()) Fail(path, "an id must not be empty");
    if (const host::Animatable* first = scene_->FindById(id)) {
      Fail(path, "duplicate id \"" + id + "\" (first used at " + DeclarationOf(first).Text() + ")");
    }
    return id;
  }

  // Where an entity's id was read. Searched only for the message about a second use: the scene's
  // own table of ids tells whether an id is taken.
  JsonPath DeclarationOf(const host::Animatable* entity) const {
    JsonPath path;
    auto search = [&](const auto& declared) {
      for (const auto& [fields, declaredEntity] : declared) {
        if (fields && static_cast<const host::Animatable*>(declaredEntity) == entity)
          path = fields->PathOf("id");
      }
    };
    search(nodes_);
    search(objects_);
    search(derived_);
    search(modifiers_);
    search(materials_);
    search(maps_);
    return path;
  }

  void ReadSettings(const Fields& top) {
    if (std::optional<JsonValue> time = top.Find("time")) scene_->time = ReadInt(*time, "time");
    if (std::optional<JsonValue> scale = top.Find("unitScale"))
      scene_->metresPerUnit = ReadDouble(*scale, "unitScale");
    if (std::optional<JsonValue> file = top.Find("file")) {
      Fields fields(*file, "file", {"name", "path"});
      if (std::optional<JsonValue> name = fields.Find("name"))
        scene_->fileName = ReadText(*name, fields.PathOf("name"));
      if (std::optional<JsonValue> path = fields.Find("path"))
        scene_->filePath = ReadText(*path, fields.PathOf("path"));
    }
    if (std::optional<JsonValue> dir = top.Find("settingsDirectory")) {
      scene_->settingsDirectory = ReadText(*dir, "settingsDirectory");
    }
    if (std::optional<JsonValue> environment = top.Find("environment"))
      ReadEnvironment(*environment);
    if (std::optional<JsonValue> scripts = top.Find("scripts")) ReadScripts(*scripts);
    if (std::optional<JsonValue> resolution = top.Find("fileResolution"))
      ReadFileResolution(*resolution);
    if (std::optional<JsonValue> files = top.Find("files")) ReadFiles(*files);
    if (std::optional<JsonValue> behaviour = top.Find("export")) {
      scene_->exportBehaviour =
          ReadName(kExportBehaviours, *behaviour, "export", "export behaviour");
    }
  }

  void ReadEnvironment(JsonValue value) {
    Fields fields(value, "environment", {"background", "useMap", "map"});
    if (std::optional<JsonValue> background = fields.Find("background")) {
      scene_->background = ReadColor(*background, fields.PathOf("background"));
    }
    if (std::optional<JsonValue> useMap = fields.Find("useMap")) {
      scene_->useEnvironmentMap = ReadBool(*useMap, fields.PathOf("useMap"));
    }
    if (std::optional<JsonValue> map = fields.Find("map"))
      scene_->environmentMap = ResolveMap(*map, fields.PathOf("map"));
  }

  void ReadScripts(JsonValue value) {
    RequireArray(value, "scripts");
    for (auto [i, script] : value.Elements()) {
      Fields fields(script, Element("scripts", i), {"contains", "reply", "fails"});
      ScriptRule rule;
      JsonValue contains = RequireArray(fields.Get("contains"), fields.PathOf("contains"));
      for (auto [k, text] : contains.Elements())
        rule.contains.push_back(ReadText(text, Element(fields.PathOf("contains"), k)));
      if (std::optional<JsonValue> fails = fields.Find("fails"))
        rule.fails = ReadBool(*fails, fields.PathOf("fails"));
      std::optional<JsonValue> reply = fields.Find("reply");
      if (rule.fails && reply) Fail(fields.PathOf("reply"), "a failing run has no reply");
      if (!rule.fails && !reply) Fail(fields.path(), "missing key \"reply\" (or \"fails\": true)");
      if (reply && !reply->IsNull()) rule.reply = ReadText(*reply, fields.PathOf("reply"));
      scene_->scriptRules.push_back(std::move(rule));
    }
  }

  void ReadFileResolution(JsonValue value) {
    if (value.IsNull()) {
      scene_->fileResolution.reset();  // the service is not available
      return;
    }
    RequireArray(value, "fileResolution");
    for (auto [i, item] : value.Elements()) {
      Fields fields(item, Element("fileResolution", i), {"path", "assetType", "answer"});
      FileResolutionAnswer answer;
      answer.path = ReadText(fields.Get("path"), fields.PathOf("path"));
      answer.assetType =
          ReadName(kAssetTypes, fields.Get("assetType"), fields.PathOf("assetType"), "asset type");
      answer.answer = ReadText(fields.Get("answer"), fields.PathOf("answer"));
      scene_->fileResolution->push_back(std::move(answer));
    }
  }

  void ReadFiles(JsonValue value) {
    if (!value.IsObject()) Fail("files", "expected an object");
    for (auto [key, path] : value.Members()) {
      std::string local = ReadString(path, Member("files", key));
      std::u16string hostPath = FromUtf8(key);
      scene_->fileAliases.emplace_back(hostPath, local);
      scene_->files.AddAlias(
          hostPath, folder_ / std::filesystem::path(std::u8string(local.begin(), local.end())));
    }
  }

  void ReadCommon(const Fields& fields, AnimatableData& data, bool classRequired) {
    if (std::optional<JsonValue> handle = fields.Find("handle")) {
      data.handle = static_cast<AnimHandle>(
          ReadInteger(*handle, fields.PathOf("handle"), 0, std::numeric_limits<int64_t>::max()));
      data.handleGiven = true;
    }
    if (std::optional<JsonValue> className = fields.Find("class")) {
      data.className = ReadText(*className, fields.PathOf("class"));
    } else if (classRequired) {
      Fail(fields.path(), "missing key \"class\"");
    }
    if (std::optional<JsonValue> classId = fields.Find("classId")) {
      JsonPath path = fields.PathOf("classId");
      if (!classId->IsArray() || classId->size() != 2) Fail(path, "expected an array of 2 ids");
      data.classId = {ReadIdPart((*classId)[0], Element(path, 0)),
                      ReadIdPart((*classId)[1], Element(path, 1))};
    }
    if (std::optional<JsonValue> params = fields.Find("params"))
      ReadParamBlocks(*params, fields.PathOf("params"), data);
  }

  SClass_ID ReadSuperClass(JsonValue value, const JsonPath& path) {
    if (value.IsNumber()) return static_cast<SClass_ID>(ReadIdPart(value, path));
    return ReadName(kSuperClasses, value, path, "super class");
  }

  void ReadNode(const Fields& fields, MemNode& node) {
    node.data.className = u"Node";
    node.data.superClassId = 0x1;
    ReadCommon(fields, node.data, false);
    if (std::optional<JsonValue> name = fields.Find("name"))
      node.name = ReadText(*name, fields.PathOf("name"));
    MemNode* parent = static_cast<MemNode*>(scene_->GetRootNode());
    if (std::optional<JsonValue> parentId = fields.Find("parent");
        parentId && !parentId->IsNull()) {
      parent = Resolve<MemNode>(*parentId, fields.PathOf("parent"), "node");
    }
    node.parent = parent;
    parent->children.push_back(&node);
    if (std::optional<JsonValue> object = fields.Find("object"))
      node.objectRef = Resolve<Object>(*object, fields.PathOf("object"), "object");
    if (std::optional<JsonValue> state = fields.Find("worldState")) {
      node.worldStateOverride = Resolve<Object>(*state, fields.PathOf("worldState"), "object");
    }
    if (std::optional<JsonValue> material = fields.Find("material")) {
      node.material = Resolve<Mtl>(*material, fields.PathOf("material"), "material");
    }
    if (std::optional<JsonValue> target = fields.Find("target"))
      node.target = Resolve<INode>(*target, fields.PathOf("target"), "node");
    if (std::optional<JsonValue> transform = fields.Find("transform")) {
      node.transform = ReadMatrix(*transform, fields.PathOf("transform"));
    }
  }

  void ReadObject(const Fields& fields, MemObject& object) {
    ReadCommon(fields, object.data, true);
    object.data.superClassId =
        ReadSuperClass(fields.Get("superClass"), fields.PathOf("superClass"));
    if (std::optional<JsonValue> mesh = fields.Find("mesh"))
      object.mesh = ReadMesh(*mesh, fields.PathOf("mesh"));
    if (std::optional<JsonValue> tri = fields.Find("triObject")) {
      object.isTriObject = ReadBool(*tri, fields.PathOf("triObject"));
      if (object.isTriObject && !object.mesh)
        Fail(fields.PathOf("triObject"), "a triangle-mesh object needs a \"mesh\"");
    }
    if (std::optional<JsonValue> camera = fields.Find("camera"))
      object.camera = ReadCamera(*camera, fields.PathOf("camera"));
  }

  void ReadDerivedObject(const Fields& fields, MemDerivedObject& object) {
    object.data.className = u"Derived_Object";
    ReadCommon(fields, object.data, false);
    Fields derived(fields.Get("derived"), fields.PathOf("derived"), {"object", "modifiers"});
    object.objRef = Resolve<Object>(derived.Get("object"), derived.PathOf("object"), "object");
    if (std::optional<JsonValue> modifiers = derived.Find("modifiers")) {
      JsonPath path = derived.PathOf("modifiers");
      RequireArray(*modifiers, path);
      for (auto [i, modifier] : modifiers->Elements())
        object.modifiers.push_back(Resolve<Modifier>(modifier, Element(path, i), "modifier"));
    }
  }

  void ReadModifier(const Fields& fields, MemModifier& modifier) {
    modifier.data.superClassId = OSM_CLASS_ID;
    ReadCommon(fields, modifier.data, true);
    if (std::optional<JsonValue> superClass = fields.Find("superClass")) {
      modifier.data.superClassId = ReadSuperClass(*superClass, fields.PathOf("superClass"));
    }
  }

  template <class T>
  void ReadMtlBase(const Fields& fields, T& item) {
    ReadCommon(fields, item.data, true);
    if (std::optional<JsonValue> name = fields.Find("name"))
      item.name = ReadText(*name, fields.PathOf("name"));
    if (std::optional<JsonValue> slots = fields.Find("slots"))
      item.slots = ReadSlots(*slots, fields.PathOf("slots"));
  }

  void ReadMaterial(const Fields& fields, MemMtl& material) {
    ReadMtlBase(fields, material);
    if (std::optional<JsonValue> subs = fields.Find("subMaterials")) {
      JsonPath path = fields.PathOf("subMaterials");
      RequireArray(*subs, path);
      for (auto [i, sub] : subs->Elements())
        material.subMaterials.push_back(Resolve<Mtl>(sub, Element(path, i), "material"));
    }
    if (std::optional<JsonValue> standard = fields.Find("standard")) {
      material.standard = ReadStandard(*standard, fields.PathOf("standard"));
    }
  }

  void ReadMap(const Fields& fields, MemTexmap& map) {
    ReadMtlBase(fields, map);
    if (std::optional<JsonValue> bitmap = fields.Find("bitmap"))
      map.bitmap = ReadBitmap(*bitmap, fields.PathOf("bitmap"));
    if (std::optional<JsonValue> curves = fields.Find("curves")) {
      Fields curveFields(*curves, fields.PathOf("curves"), {"mono", "rgb"});
      if (std::optional<JsonValue> mono = curveFields.Find("mono"))
        map.monoCurves = ReadCurveCtl(*mono, curveFields.PathOf("mono"));
      if (std::optional<JsonValue> rgb = curveFields.Find("rgb"))
        map.rgbCurves = ReadCurveCtl(*rgb, curveFields.PathOf("rgb"));
    }
  }

  std::vector<MapSlot> ReadSlots(JsonValue value, const JsonPath& path) {
    RequireArray(value, path);
    std::vector<MapSlot> slots;
    for (auto [i, item] : value.Elements()) {
      Fields fields(item, Element(path, i), {"name", "map", "amount", "enabled"});
      MapSlot slot;
      slot.name = ReadText(fields.Get("name"), fields.PathOf("name"));
      if (std::optional<JsonValue> map = fields.Find("map"))
        slot.map = ResolveMap(*map, fields.PathOf("map"));
      if (std::optional<JsonValue> amount = fields.Find("amount"))
        slot.amount = ReadFloat(*amount, fields.PathOf("amount"));
      if (std::optional<JsonValue> enabled = fields.Find("enabled"))
        slot.enabled = ReadBool(*enabled, fields.PathOf("enabled"));
      slots.push_back(std::move(slot));
    }
    return slots;
  }

  StandardMaterialData ReadStandard(JsonValue value, const JsonPath& path) {
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

  BitmapData ReadBitmap(JsonValue value, const JsonPath& path) {
    Fields fields(value, path, {"mapName", "loadedGamma", "uvGen"});
    BitmapData bitmap;
    ReadOptional(fields, "mapName", bitmap.mapName, ReadText);
    if (std::optional<JsonValue> gamma = fields.Find("loadedGamma"); gamma && !gamma->IsNull()) {
      bitmap.loadedGamma = ReadFloat(*gamma, fields.PathOf("loadedGamma"));
    }
    if (std::optional<JsonValue> uvGen = fields.Find("uvGen"); uvGen && !uvGen->IsNull()) {
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

  std::unique_ptr<MemCurveCtl> ReadCurveCtl(JsonValue value, const JsonPath& path) {
    RequireArray(value, path);
    auto control = std::make_unique<MemCurveCtl>();
    for (auto [c, curve] : value.Elements()) {
      JsonPath curvePath = Element(path, c);
      if (curve.IsNull()) {
        control->curves.push_back(nullptr);
        continue;
      }
      RequireArray(curve, curvePath);
      auto points = std::make_unique<MemCurve>();
      for (auto [p, point] : curve.Elements()) {
        JsonPath pointPath = Element(curvePath, p);
        if (!point.IsArray() || point.size() != 2) Fail(pointPath, "expected a point [x, y]");
        float x = ReadFloat(point[0], Element(pointPath, 0));
        if (!points->points.empty() && x < points->points.back().first) {
          Fail(Element(pointPath, 0), "curve points must be in ascending x");
        }
        points->points.emplace_back(x, ReadFloat(point[1], Element(pointPath, 1)));
      }
      control->curves.push_back(std::move(points));
    }
    return control;
  }

  CameraData ReadCamera(JsonValue value, const JsonPath& path) {
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

  MemMesh ReadMesh(JsonValue value, const JsonPath& path) {
    Fields fields(value, path, {"vertices", "faces", "vertexColors", "colorFaces"});
    MemMesh mesh;
    mesh.vertices = ReadPointList(fields, "vertices");
    JsonPath facesPath = fields.PathOf("faces");
    JsonValue faces = RequireArray(fields.Get("faces"), facesPath);
    mesh.faces.reserve(faces.size());
    for (auto [f, face] : faces.Elements()) {
      if (auto plain = PlainFace(face, mesh.vertices.size())) {
        mesh.faces.push_back(*plain);
        continue;
      }
      JsonPath facePath = Element(facesPath, f);
      if (!face.IsArray() || (face.size() != 3 && face.size() != 4)) {
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
    if (std::optional<JsonValue> colorFaces = fields.Find("colorFaces")) {
      RequireArray(*colorFaces, fields.PathOf("colorFaces"));
      for (auto [f, face] : colorFaces->Elements()) {
        JsonPath facePath = Element(fields.PathOf("colorFaces"), f);
        if (!face.IsArray() || face.size() != 3) Fail(facePath, "expected [a, b, c]");
        mesh.colorFaces.push_back(ReadIndices(face, facePath, mesh.vertexColors.size(),
                                              "vertex colour", "vertex colours"));
      }
    }
    return mesh;
  }

  std::vector<Point3> ReadPointList(const Fields& fields, std::string_view key) {
    std::vector<Point3> points;
    std::optional<JsonValue> list = fields.Find(key);
    if (!list) return points;
    JsonPath path = fields.PathOf(key);
    RequireArray(*list, path);
    points.reserve(list->size());
    for (auto [i, item] : list->Elements()) {
      auto plain = PlainTriple(item);
      points.push_back(plain ? Point3{(*plain)[0], (*plain)[1], (*plain)[2]}
                             : ReadPoint3(item, Element(path, i)));
    }
    return points;
  }

  // A face of valid vertex indices and material id, or nullopt for one that needs reading with
  // its path.
  static std::optional<MeshFace> PlainFace(JsonValue face, size_t vertexCount) {
    if (!face.IsArray() || (face.size() != 3 && face.size() != 4)) return std::nullopt;
    MeshFace plain;
    for (auto [k, index] : face.Elements()) {
      if (!index.IsUnsigned()) return std::nullopt;
      uint64_t number = index.Unsigned();
      if (k < 3 && (number >= vertexCount || number > INT32_MAX)) return std::nullopt;
      if (k == 3 && number > 65535) return std::nullopt;
      if (k < 3)
        plain.v[k] = static_cast<int>(number);
      else
        plain.matId = static_cast<uint16_t>(number);
    }
    return plain;
  }

  std::array<int, 3> ReadIndices(JsonValue face, const JsonPath& path, size_t count,
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

  void ReadParamBlocks(JsonValue value, const JsonPath& path, AnimatableData& data) {
    RequireArray(value, path);
    for (auto [b, params] : value.Elements()) {
      JsonPath blockPath = Element(path, b);
      if (params.IsNull()) {
        data.blocks.push_back(nullptr);
        continue;
      }
      RequireArray(params, blockPath);
      auto block = std::make_unique<MemParamBlock>();
      for (auto [i, param] : params.Elements())
        block->params.push_back(ReadParam(param, Element(blockPath, i)));
      data.blocks.push_back(std::move(block));
    }
  }

  MemParam ReadParam(JsonValue value, const JsonPath& path) {
    Fields fields(value, path, {"name", "type", "value"});
    MemParam param;
    JsonValue name = fields.Get("name");
    if (!name.IsNull()) param.name = ReadText(name, fields.PathOf("name"));
    JsonValue type = fields.Get("type");
    bool byCode = type.IsInteger();
    param.type = byCode ? static_cast<ParamType2>(ReadInteger(type, fields.PathOf("type"), 0,
                                                              std::numeric_limits<int>::max()))
                        : ReadParamType(type, fields.PathOf("type"));
    JsonValue paramValue = fields.Get("value");
    JsonPath valuePath = fields.PathOf("value");
    // A type given by its code holds no readable value, whatever the code.
    int baseType = byCode ? -1 : param.type & ~TYPE_TAB;
    if ((param.type & TYPE_TAB) != 0) {
      RequireArray(paramValue, valuePath);
      for (auto [i, element] : paramValue.Elements())
        param.elements.push_back(ReadElement(element, Element(valuePath, i), baseType));
    } else {
      param.elements.push_back(ReadElement(paramValue, valuePath, baseType));
    }
    return param;
  }

  ParamType2 ReadParamType(JsonValue value, const JsonPath& path) {
    std::string name = ReadString(value, path);
    bool table = name.size() > 4 && name.compare(name.size() - 4, 4, "_tab") == 0;
    std::string base = table ? name.substr(0, name.size() - 4) : name;
    for (const auto& [typeName, code] : kParamTypes) {
      if (base == typeName) return static_cast<ParamType2>(table ? (code | TYPE_TAB) : code);
    }
    Fail(path, "unknown parameter type \"" + name + "\"");
  }

  ParamElement ReadElement(JsonValue value, const JsonPath& path, int baseType) {
    switch (baseType) {
      case TYPE_FLOAT:
      case TYPE_ANGLE:
      case TYPE_PCNT_FRAC:
      case TYPE_WORLD: return ReadFloat(value, path);
      case TYPE_INT:
      case TYPE_INDEX: return ReadInt(value, path);
      case TYPE_BOOL:
        // A boolean is stored as an integer; any integer may be given.
        return value.IsBool() ? static_cast<int>(value.Bool()) : ReadInt(value, path);
      case TYPE_RGBA:
      case TYPE_FRGBA: return ReadColor(value, path);
      case TYPE_POINT3: return ReadPoint3(value, path);
      case TYPE_STRING:
      case TYPE_FILENAME:
        if (value.IsNull()) return std::optional<std::u16string>();
        return std::optional<std::u16string>(ReadText(value, path));
      case TYPE_MTL: return static_cast<Animatable*>(Resolve<Mtl>(value, path, "material"));
      case TYPE_TEXMAP: return static_cast<Animatable*>(ResolveMap(value, path));
      case TYPE_INODE: return static_cast<Animatable*>(Resolve<INode>(value, path, "node"));
      case TYPE_REFTARG: return Resolve<Animatable>(value, path, "animatable");
      case TYPE_MATRIX3: return ReadMatrix(value, path);
      default:
        if (!value.IsNull()) Fail(path, "this parameter type holds no value; write null");
        return std::monostate();
    }
  }

  template <class Value, class Reader>
  void ReadOptional(const Fields& fields, std::string_view key, Value& target, Reader read) {
    if (std::optional<JsonValue> value = fields.Find(key))
      target = read(*value, fields.PathOf(key));
  }

  // null, or the id of an animatable of type T.
  template <class T>
  T* Resolve(JsonValue value, const JsonPath& path, const std::string& what) {
    if (value.IsNull()) return nullptr;
    std::string id = ReadString(value, path);
    T* found = dynamic_cast<T*>(scene_->FindById(id));
    if (found == nullptr) Fail(path, "no " + what + " with id \"" + id + "\"");
    return found;
  }

  Texmap* ResolveMap(JsonValue value, const JsonPath& path) {
    return Resolve<Texmap>(value, path, "map");
  }

  // Follows each chain once: a link already known to lead out ends the walk, so the check stays
  // linear however long the chains are.
  template <class Link, class T, class Next>
  void CheckChains(const Declared<T>& declared, Next next, const std::string& key,
                   const std::string& what) {
    FlatMap<Link, bool> leadsOut;  // false while the link is on the current path
    leadsOut.Reserve(declared.size());
    std::vector<Link> path;
    for (const auto& [fields, start] : declared) {
      path.clear();
      for (Link link = start; link != nullptr; link = next(link)) {
        auto [leads, isNew] = leadsOut.TryEmplace(link);
        if (!isNew) {
          if (!*leads) {
            Fail(fields->PathOf(key),
                 "the " + what + " has a cycle through \"" + start->data.id + "\"");
          }
          break;
        }
        path.push_back(link);
      }
      for (Link link : path)
        *leadsOut.Find(link) = true;
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
    FlatMap<AnimHandle, const Fields*> firstUse;
    firstUse.Reserve(nodes_.size() + objects_.size() + derived_.size() + modifiers_.size() +
                     materials_.size() + maps_.size());
    auto check = [&](const auto& declared) {
      for (const auto& [fields, entity] : declared) {
        const AnimatableData& data = entity->data;
        if (!data.handleGiven || data.handle == 0) continue;
        auto [first, isNew] = firstUse.TryEmplace(data.handle);
        if (isNew) {
          *first = fields.get();
          continue;
        }
        Fail(fields->PathOf("handle"), "duplicate handle " + std::to_string(data.handle) +
                                           " (first used at " + (*first)->PathOf("handle").Text() +
                                           ")");
      }
    };
    check(nodes_);
    check(objects_);
    check(derived_);
    check(modifiers_);
    check(materials_);
    check(maps_);
  }

  JsonValue root_;
  std::filesystem::path folder_;
  std::unique_ptr<MemScene> scene_;
  Declared<MemNode> nodes_;
  Declared<MemObject> objects_;
  Declared<MemDerivedObject> derived_;
  Declared<MemModifier> modifiers_;
  Declared<MemMtl> materials_;
  Declared<MemTexmap> maps_;
};

}  // namespace

namespace {

// Loads the scene of `text`. Keys are checked for duplicates on a second thread while the loader
// declares every entity, which takes about as long; a duplicate key is a fault of the text and
// is reported before anything the loader found. `letGoOfText` is called, from either thread, once
// the text is no longer needed: the document holds its own copy of every string, and a large
// scene's text would otherwise stay in memory beside the scene built from it.
SceneLoadResult Load(std::string_view text, size_t readableBeyond,
                     const std::filesystem::path& folder,
                     const std::function<void()>& letGoOfText) {
  SceneLoadResult result;
  try {
    JsonDocument document = ParseLeavingKeysUnchecked(text, readableBeyond);
    bool duplicates = false;
    std::exception_ptr checkFailure;
    auto check = [&] {
      try {
        duplicates = document.HasDuplicateKeys();
        if (!duplicates) letGoOfText();
      } catch (...) {
        checkFailure = std::current_exception();
      }
    };
    std::thread checker;
    try {
      checker = std::thread(check);
    } catch (const std::system_error&) {
      check();  // no second thread to be had: one after the other
    }
    std::exception_ptr loadFailure;
    try {
      result.scene = Loader(document.root(), folder).Load();
    } catch (...) {
      loadFailure = std::current_exception();
    }
    if (checker.joinable()) checker.join();
    if (checkFailure) std::rethrow_exception(checkFailure);
    if (duplicates) ParseStrictlyWithNlohmann(text);  // throws the duplicate key's message
    if (loadFailure) std::rethrow_exception(loadFailure);
  } catch (const SceneFileError& error) {
    result.scene.reset();
    result.error = error.what();
  }
  return result;
}

}  // namespace

SceneLoadResult LoadSceneText(std::string_view text, const std::filesystem::path& folder,
                              size_t readableBeyond) {
  return Load(text, readableBeyond, folder, [] {});
}

SceneLoadResult LoadSceneFile(const std::filesystem::path& file) {
  FileReadError error = FileReadError::kNone;
  FileBytes text = FileBytes::Open(file, kParsePadding, error);
  if (error != FileReadError::kNone) {
    return {nullptr, file.string() + ": " + DescribeFileReadError(error)};
  }
  SceneLoadResult result =
      Load(text.bytes(), kParsePadding, file.parent_path(), [&] { text.Release(); });
  text.Release();
  if (text.CutShort()) {
    // Whatever was read past the cut was zeros: neither the scene nor a fault found in it counts.
    return {nullptr, file.string() + ": was cut short by another program while it was read"};
  }
  if (!result.scene) result.error = file.string() + ": " + result.error;
  return result;
}

}  // namespace orvane::host::memory
