#include "lights/lights.h"

#include <unordered_map>

#include "base/wide_text.h"
#include "graph/param_lookup.h"
#include "host/object.h"
#include "host/scene_walk.h"

namespace orvane {

namespace {

constexpr uint64_t kMaxIesBytes = 1 << 20;

std::u16string_view LightLabel(LightKind kind) {
  switch (kind) {
    case LightKind::kCoronaLight: return u"CoronaLight";
    case LightKind::kCoronaSun: return u"CoronaSun";
    case LightKind::kVRayLight: return u"VRayLight";
    case LightKind::kVRaySun: return u"VRaySun";
    case LightKind::kVRayIES: return u"VRayIES";
    case LightKind::kPhotometricLight: return u"PhotometricLight";
    case LightKind::kNone: break;
  }
  return u"";
}

std::u16string_view IesParameter(LightKind kind) {
  switch (kind) {
    case LightKind::kCoronaLight: return u"iesFile";
    case LightKind::kVRayIES: return u"ies_file";
    case LightKind::kPhotometricLight: return u"webfile";
    default: return u"";
  }
}

host::Point3 Scaled(host::Point3 p, double scale) {
  auto s = static_cast<float>(scale);
  return {p.x * s, p.y * s, p.z * s};
}

// Where an IES path stored in the scene really is: as stored, beside the scene file, then
// wherever the host's asset resolver places it as a photometric or bitmap asset.
std::u16string ResolveIesPath(const LightContext& context, std::u16string_view stored) {
  if (stored.empty()) return {};
  const host::FileSystem& files = context.files;
  if (files.Exists(stored)) return std::u16string(stored);
  std::u16string scenePath = context.write.scene.GetCurFilePath();
  size_t separator = scenePath.find_last_of(u"\\/");
  if (separator != std::u16string::npos) {
    std::u16string candidate = scenePath.substr(0, separator + 1) + std::u16string(stored);
    if (files.Exists(candidate)) return candidate;
  }
  if (host::IFileResolutionManager* resolver = context.write.scene.GetFileResolutionManager()) {
    for (host::AssetType type : {host::kPhotometricAsset, host::kBitmapAsset}) {
      std::u16string answer = resolver->GetFullFilePath(stored, type);
      if (!answer.empty() && files.Exists(answer)) return answer;
    }
  }
  return {};
}

}  // namespace

double SceneUnitScale(host::Interface& scene) {
  double scale = scene.GetSystemUnitScale(host::UNITS_METERS);
  return scale > 0 ? scale : 0.0254;
}

LightKind ClassifyLight(host::INode& node, host::TimeValue t) {
  host::Object* object = node.EvalWorldState(t);
  if (object == nullptr) return LightKind::kNone;
  std::u16string className = object->GetClassName();
  for (LightKind kind : {LightKind::kCoronaLight, LightKind::kCoronaSun, LightKind::kVRayLight,
                         LightKind::kVRaySun, LightKind::kVRayIES}) {
    if (className == LightLabel(kind)) return kind;
  }
  // Photometric lights only with a web file: other host lights are not exported. Every node of
  // the scene comes here, so the parameters of the rest are not searched.
  if (object->SuperClassID() != host::LIGHT_CLASS_ID) return LightKind::kNone;
  ParamValue webFile = FindParamValue(object, u"webfile", t);
  if (webFile.kind == ParamKind::kString && !webFile.text.empty()) {
    return LightKind::kPhotometricLight;
  }
  return LightKind::kNone;
}

std::u16string WriteLightTransform(const WriteContext& context, host::INode& node, double unitScale,
                                   bool withTarget) {
  host::Matrix3 tm = node.GetNodeTM(context.time);
  host::Point3 position, scale;
  host::Quat rotation;
  context.scene.DecomposeMatrix(tm, position, rotation, scale);
  std::u16string text =
      u"\"transform\":{\"position\":" + FormatJsonPoint3(Scaled(position, unitScale)) +
      u",\"quat\":" + FormatJsonQuat(rotation) + u",\"scale\":" + FormatJsonPoint3(scale) +
      u",\"basis\":[" + FormatJsonPoint3(tm.GetRow(0)) + u"," + FormatJsonPoint3(tm.GetRow(1)) +
      u"," + FormatJsonPoint3(tm.GetRow(2)) + u"]}";
  host::INode* target = node.GetTarget();
  if (withTarget && target != nullptr) {
    host::Point3 targetPosition = Scaled(target->GetNodeTM(context.time).GetTrans(), unitScale);
    text += u",\"target_transform\":{\"position\":" + FormatJsonPoint3(targetPosition) + u"}";
  }
  return text;
}

std::u16string ReadIesText(const host::FileSystem& files, std::u16string_view path) {
  std::optional<std::string> bytes = files.ReadBytes(path, kMaxIesBytes);
  if (!bytes || bytes->empty()) return {};
  if (std::optional<std::u16string> text = FromUtf8Strict(*bytes)) return *text;
  return FromAnsiCodePage(*bytes);
}

void EmbedIesFile(FragmentList& fragments, const LightContext& context,
                  const host::Animatable& light, std::u16string_view parameter,
                  std::vector<std::u16string>& log, std::u16string_view nodeName) {
  ParamValue stored = FindParamValue(&light, parameter, context.write.time);
  if (stored.kind != ParamKind::kString || stored.text.empty()) return;
  fragments.push_back(u"\"ies_file\":\"" + EscapeJsonString(stored.text) + u"\"");
  std::u16string resolved = ResolveIesPath(context, stored.text);
  if (resolved.empty()) {
    fragments.push_back(u"\"ies_error\":\"file not found\"");
    log.push_back(u"  IES NOT FOUND for " + std::u16string(nodeName) + u": " + stored.text);
    return;
  }
  std::u16string text = ReadIesText(context.files, resolved);
  if (text.empty()) {
    fragments.push_back(u"\"ies_error\":\"file unreadable\"");
    log.push_back(u"  IES UNREADABLE for " + std::u16string(nodeName) + u": " + resolved);
    return;
  }
  fragments.push_back(u"\"ies_data\":\"" + EscapeJsonString(text) + u"\"");
  log.push_back(u"  IES embedded for " + std::u16string(nodeName) + u": " + resolved + u" (" +
                Decimal(static_cast<int64_t>(text.size())) + u" chars)");
}

std::u16string CollectLightsJson(const WriteContext& context, const host::FileSystem& files,
                                 std::vector<std::u16string>& log) {
  LightContext lights{context, files, SceneUnitScale(context.scene)};
  struct Entry {
    host::INode* node;
    LightKind kind;
    int group;
  };
  std::vector<Entry> entries;
  std::unordered_map<const host::Object*, int> groups;  // instances share one referenced object
  for (host::INode* node : ListSceneNodes(context.scene)) {
    LightKind kind = ClassifyLight(*node, context.time);
    if (kind == LightKind::kNone) continue;
    auto [group, added] = groups.emplace(node->GetObjectRef(), static_cast<int>(groups.size()) + 1);
    entries.push_back({node, kind, group->second});
  }
  std::u16string records;
  for (const Entry& entry : entries) {
    FragmentList fragments = WriteLightParams(lights, entry.kind, *entry.node);
    std::u16string name = entry.node->GetName();
    std::u16string_view parameter = IesParameter(entry.kind);
    if (!parameter.empty()) {
      if (host::Object* light = entry.node->EvalWorldState(context.time)) {
        EmbedIesFile(fragments, lights, *light, parameter, log, name);
      }
    }
    if (!records.empty()) records += u",\n";
    records += u"  {\n    \"light_name\": \"" + EscapeJsonString(name) +
               u"\",\n    \"light_type\": \"" + std::u16string(LightLabel(entry.kind)) +
               u"\",\n    " + JoinFragments(fragments, u"") + u",\n    \"instance_group\": " +
               Decimal(entry.group) + u"\n  }";
    log.push_back(u"  " + std::u16string(LightLabel(entry.kind)) + u" exported: " + name +
                  u" (group " + Decimal(entry.group) + u")");
  }
  log.push_back(u"Lights exported: " + Decimal(static_cast<int64_t>(entries.size())) +
                u" (instance groups: " + Decimal(static_cast<int64_t>(groups.size())) + u")");
  if (entries.empty()) return {};
  return u",\n  \"lights\": [\n" + records + u"\n  ]";
}

}  // namespace orvane
