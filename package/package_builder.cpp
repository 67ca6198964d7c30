#include "package/package_builder.h"

#include <algorithm>
#include <cstdio>
#include <unordered_map>

#include "base/flat_text_set.h"
#include "base/wide_text.h"
#include "graph/json_text.h"
#include "host/object.h"
#include "host/scene_walk.h"
#include "lights/lights.h"
#include "package/cameras.h"
#include "package/displacement_record.h"
#include "package/environment.h"
#include "package/material_record.h"
#include "package/numeric_locale_guard.h"
#include "package/render_settings.h"

namespace orvane {

namespace {

using Log = std::vector<std::u16string>;

// The package goes to its file a block at a time as it is produced. Held whole, it would be
// hundreds of megabytes of fresh memory, and on a virtual machine first touching fresh memory
// costs more than writing the file; a few blocks, filled again and again, stay in the cache.
// Records are written straight into the block and handed on only whole, so that a record can
// still be rewritten while it is being written.
class BlockWriter {
 public:
  explicit BlockWriter(host::ByteSink& sink) : sink_(sink) { block_.reserve(kRoom); }

  std::string& text() { return block_; }

  // Hands the block on once it holds enough; called between records.
  void EndRecord() {
    if (block_.size() >= kBlockBytes) Flush();
  }

  void Flush() {
    sink_.WriteBlock(block_);
    block_.reserve(kRoom);  // the buffer given back may be a new one
  }

 private:
  static constexpr size_t kBlockBytes = 1 << 20;
  static constexpr size_t kRoom = 2 * kBlockBytes;  // a block and its last record
  host::ByteSink& sink_;
  std::string block_;
};

// Most records render their material from a template, and on a large scene the node, the
// template's slot and the template lie far apart in memory. Each is asked for a few records
// ahead, one step after the other, so that the waits overlap with writing the records before.
class RecordPrefetcher {
 public:
  RecordPrefetcher(const std::vector<host::INode*>& geometry, const TreeTemplates& trees)
      : geometry_(geometry), trees_(trees) {
    if (geometry_.size() > 1) materials_[1] = geometry_[1]->GetMtl();
  }

  // Called before record `i` is written.
  void Before(size_t i) {
    size_t count = geometry_.size();
    if (i + 3 < count) Prefetch(geometry_[i + 3]);
    if (i + 2 < count) {
      materials_[i % 2] = geometry_[i + 2]->GetMtl();
      trees_.byMaterial.PrefetchSlot(materials_[i % 2]);
    }
    if (i + 1 < count) {
      const TreeTemplate* next = trees_.byMaterial.Find(materials_[(i + 1) % 2]);
      if (next != nullptr && next->kept()) next->PrefetchStart();
    }
  }

 private:
  const std::vector<host::INode*>& geometry_;
  const TreeTemplates& trees_;
  const host::Mtl* materials_[2] = {};  // of records i + 1 and i + 2
};

std::vector<host::INode*> GeometryWithMaterials(const WriteContext& context) {
  std::vector<host::INode*> geometry;
  for (host::INode* node : ListSceneNodes(context.scene)) {
    host::Object* object = node->EvalWorldState(context.time);
    if (object != nullptr && object->SuperClassID() == host::GEOMOBJECT_CLASS_ID &&
        node->GetMtl() != nullptr) {
      geometry.push_back(node);
    }
  }
  return geometry;
}

std::u16string Suffixed(const std::u16string& name, int number) {
  char suffix[16];
  std::snprintf(suffix, sizeof suffix, "_%03d", number);
  return name + AsciiToWide(suffix);
}

// Names already taken keep theirs; a repeated name takes the first free "_NNN" suffix. Only the
// names met so far count, never the rest of the scene.
void RenameDuplicates(const std::vector<host::INode*>& geometry, Log& log) {
  // Each object takes exactly one name, its own or a new one, so the names taken fit in room
  // reserved once: they never move, and the set only views them.
  std::vector<std::u16string> taken;
  taken.reserve(geometry.size());
  FlatTextSet seen;
  seen.Reserve(geometry.size());
  // Where the search for each name's next suffix resumes: every number below it was taken, and
  // taken names stay taken, so the search never has to start again from 1.
  std::unordered_map<std::u16string, int> nextNumber;
  int renamed = 0;
  for (host::INode* node : geometry) {
    std::u16string& name = taken.emplace_back(node->GetName());
    if (seen.Insert(name)) continue;
    int& number = nextNumber.try_emplace(name, 1).first->second;
    std::u16string candidate = Suffixed(name, number);
    while (seen.Contains(candidate))
      candidate = Suffixed(name, ++number);
    ++number;
    node->SetName(candidate);
    ++renamed;
    log.push_back(u"WARNING: Duplicate name - renamed '" + name + u"' to '" + candidate +
                  u"' in scene");
    name = std::move(candidate);
    seen.Insert(name);
  }
  if (renamed > 0) {
    log.push_back(u"Total renamed: " + Decimal(renamed) +
                  u" object(s). Check scene before saving!");
  }
}

// Writes each material's record once, ahead of the object records, so that those only render
// templates. Objects meet their materials in no particular order; taken in the order they lie in
// memory instead, a large scene's materials, parameters and slots are read as they were laid down,
// which on 100,000 objects saves a tenth of the build. The records come out the same, since a
// record depends only on its material and on where the node counter stands. A material that
// fails here is left to its object's record, which fails the same way and says so.
void PrepareMaterialRecords(const WriteContext& context,
                            const std::vector<host::INode*>& geometry) {
  std::vector<const host::Mtl*> materials;
  materials.reserve(geometry.size());
  for (host::INode* node : geometry)
    materials.push_back(node->GetMtl());
  std::ranges::sort(materials);
  materials.erase(std::unique(materials.begin(), materials.end()), materials.end());
  NodeTreeState scratchState;  // the real counter is not moved: records are placed later
  std::string scratch;
  std::vector<std::u16string> errors;
  for (const host::Mtl* material : materials) {
    scratch.clear();
    try {
      AppendMaterialRecord(context, scratchState, material, errors, scratch);
    } catch (...) {
      // Reported by the record of the first object that has this material.
    }
  }
}

std::u16string MaterialIds(const WriteContext& context, host::INode& node) {
  std::vector<int> ids;
  host::Object* object = node.EvalWorldState(context.time);
  if (object != nullptr && object->CanConvertToTriObject()) {
    if (host::TriObject* mesh = object->ConvertToTriObject(context.time)) {
      const host::Mesh& faces = mesh->GetMesh();
      for (int f = 0; f < faces.GetNumFaces(); ++f) {
        int id = faces.GetFace(f).matId + 1;  // written one-based, as the user sees them
        if (std::find(ids.begin(), ids.end(), id) == ids.end()) ids.push_back(id);
      }
      if (mesh != object) mesh->DeleteThis();
    }
  }
  std::sort(ids.begin(), ids.end());
  std::u16string text = u"[";
  for (size_t i = 0; i < ids.size(); ++i) {
    if (i > 0) text += u',';
    text += Decimal(ids[i]);
  }
  return text + u"]";
}

// The members of an object record ahead of its errors and material.
struct RecordHead {
  std::u16string name, className, materialIds, displacement;
};

void AppendRecordHead(const RecordHead& head, const std::vector<std::u16string>& errors,
                      std::string& out) {
  out += "  {\n    \"object_name\": \"";
  AppendEscapedJsonUtf8(out, head.name);
  out += "\",\n    \"object_class\": \"";
  AppendEscapedJsonUtf8(out, head.className);
  out += "\",\n    \"layer\": \"\",\n    \"material_ids\": ";
  AppendUtf8(out, head.materialIds);
  out += ",\n    \"displacement_mod\": ";
  AppendUtf8(out, head.displacement);
  out += ",\n    \"errors\": [";
  for (size_t i = 0; i < errors.size(); ++i) {
    if (i > 0) out += ',';
    out += '"';
    AppendEscapedJsonUtf8(out, errors[i]);
    out += '"';
  }
  out += "],\n    \"material\": ";
}

// One object's record appended to `out`. The material, by far the largest member, is written in
// place; the members ahead of it are read first, which changes nothing since reading a
// material's trees does not change the object.
void AppendObjectRecord(const WriteContext& context, NodeTreeState& state, host::INode& node,
                        Log& log, std::string& out) {
  RecordHead head;
  head.materialIds = MaterialIds(context, node);
  head.name = node.GetName();
  head.displacement = BuildDisplacementRecord(context, &node);
  host::Object* evaluated = node.EvalWorldState(context.time);
  if (evaluated != nullptr) head.className = evaluated->GetClassName();
  std::vector<std::u16string> errors;
  size_t recordStart = out.size();
  AppendRecordHead(head, errors, out);
  size_t materialStart = out.size();
  try {
    AppendMaterialRecord(context, state, node.GetMtl(), errors, out);
  } catch (...) {
    // One broken material must not cost the user the whole package.
    out.resize(materialStart);
    out += "null";
    errors.push_back(u"buildMaterialJson exception");
  }
  if (!errors.empty()) {
    // Rare: the errors go ahead of the material, so the record is written again around it.
    std::string material = out.substr(materialStart);
    out.resize(recordStart);
    AppendRecordHead(head, errors, out);
    out += material;
    for (const std::u16string& error : errors)
      log.push_back(u"[" + head.name + u"] " + error);
  }
  out += "\n  }";
}

std::u16string Header(const ColorSettings& color, double unitScale,
                      const RenderDisplacement& displacement, int objectCount) {
  std::u16string header =
      u"{\n  \"exporter\": \"Velmora\",\n  \"version\": \"1.0\",\n"
      u"  \"build_marker\": \"v3.41-targetradio\",\n  \"scene_color_mode\": \"" +
      color.mode + u"\",\n  \"scene_rendering_space\": \"" + color.renderingSpace +
      u"\",\n  \"scene_display_gamma\": " + FormatJsonNumber(color.displayGamma) +
      u",\n  \"scene_unit_scale\": " + FormatJsonNumber(static_cast<float>(unitScale)) + u",\n";
  if (displacement.found) {
    header += u"  \"disp_render_amount\": " + FormatJsonNumber(displacement.amount) +
              u",\n  \"disp_render_relative\": " + FormatJsonBool(displacement.relative) + u",\n";
  }
  return header + u"  \"object_count\": " + Decimal(objectCount) + u",\n  \"objects\": [\n";
}

std::string LogText(const Log& log) {
  std::string text;
  for (const std::u16string& line : log)
    text += ToUtf8(line) + "\n";
  return text;
}

}  // namespace

std::u16string LogPathFor(std::u16string_view documentPath) {
  size_t dot = documentPath.rfind(u'.');
  if (dot == std::u16string_view::npos) return std::u16string(documentPath) + u".log";
  return std::u16string(documentPath.substr(0, dot)) + u".log";
}

BuildResult BuildPackage(const WriteContext& caller, host::FileSystem& files, NodeTreeState& state,
                         std::u16string_view documentPath) {
  NumericLocaleGuard numbers;
  ParamFragments params;
  TreeTemplates trees;
  WriteContext context{caller.scene, caller.time,
                       caller.params != nullptr ? caller.params : &params,
                       caller.trees != nullptr ? caller.trees : &trees};
  Log log;
  std::vector<host::INode*> geometry = GeometryWithMaterials(context);
  log.push_back(u"Geometry objects with materials: " +
                Decimal(static_cast<int64_t>(geometry.size())));
  RenameDuplicates(geometry, log);

  ColorSettings color = QueryColorSettings(context.scene);
  double unitScale = SceneUnitScale(context.scene);
  RenderDisplacement displacement = QueryRenderDisplacement(context.scene);
  auto objectCount = static_cast<int32_t>(geometry.size());

  // Records are written as UTF-8 straight into the file: the package is never held as wide
  // text, and no record is built twice.
  bool written = files.WriteStreamed(documentPath, [&](host::ByteSink& sink) {
    // Only once the file is open: a path that cannot be written fails before any of this work.
    PrepareMaterialRecords(context, geometry);
    BlockWriter out(sink);
    AppendUtf8(out.text(), Header(color, unitScale, displacement, objectCount));
    RecordPrefetcher prefetcher(geometry, *context.trees);
    // Once a write has failed (a full disk) the package is lost whatever follows, and the
    // records still to come are not worth the user's wait.
    for (size_t i = 0; i < geometry.size(); ++i) {
      if (sink.Failed()) return;
      prefetcher.Before(i);
      AppendObjectRecord(context, state, *geometry[i], log, out.text());
      out.text() += i + 1 < geometry.size() ? ",\n" : "\n";
      out.EndRecord();
    }
    std::u16string sections = CollectLightsJson(context, files, log);
    sections += CollectCamerasJson(context, log);
    sections += WriteEnvironmentJson(context, state, log);
    out.text() += "  ]";
    AppendUtf8(out.text(), sections);
    out.text() += "\n}";
    out.Flush();
  });
  BuildResult result;
  result.logLineCount = static_cast<int32_t>(log.size());
  if (!written) return result;
  result.success = true;
  result.objectCount = objectCount;
  if (!log.empty()) files.WriteBytes(LogPathFor(documentPath), LogText(log));
  return result;
}

}  // namespace orvane
