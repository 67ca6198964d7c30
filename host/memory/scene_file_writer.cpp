#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "base/wide_text.h"
#include "host/memory/scene_file.h"
#include "host/memory/scene_file_names.h"

namespace orvane::host::memory {

namespace {

using json = nlohmann::ordered_json;

std::string Utf8(std::u16string_view text) {
  return ToUtf8(text);
}

// The shortest decimal that reads back as the same float, so 0.8f is written 0.8 rather than
// the double 0.800000011920929.
json FloatJson(float value) {
  if (std::isnan(value)) return "nan";
  if (std::isinf(value)) return value > 0 ? "inf" : "-inf";
  char digits[32];
  auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
  double shortest = 0;
  std::from_chars(digits, end, shortest);
  return shortest;
}

json TripleJson(float a, float b, float c) {
  return json::array({FloatJson(a), FloatJson(b), FloatJson(c)});
}
json ColorJson(const Color& color) {
  return TripleJson(color.r, color.g, color.b);
}
json PointJson(const Point3& point) {
  return TripleJson(point.x, point.y, point.z);
}

json MatrixJson(const Matrix3& matrix) {
  json rows = json::array();
  for (const Point3& row : matrix.rows)
    rows.push_back(PointJson(row));
  return rows;
}

std::string Hex(uint32_t value) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%X", value);
  return text;
}

template <class Table, class Code>
std::string NameOf(const Table& table, Code code) {
  for (const auto& [name, value] : table) {
    if (value == code) return std::string(name);
  }
  return {};
}

json IdOf(const Animatable* animatable) {
  if (animatable == nullptr) return nullptr;
  const AnimatableData* data = MemScene::DataOf(animatable);
  return data != nullptr ? json(data->id) : json(nullptr);
}

// The type's name; its code when the format has no name for it, or when the host refused one
// of its values (the code then reads back as a parameter that refuses every read).
json ParamTypeJson(const MemParam& param) {
  int baseType = param.type & ~TYPE_TAB;
  std::string name = NameOf(kParamTypes, baseType);
  bool refused = ParamTypeHoldsValue(baseType) &&
                 std::any_of(param.elements.begin(), param.elements.end(), [](const auto& e) {
                   return std::holds_alternative<std::monostate>(e);
                 });
  if (name.empty() || refused) return static_cast<int>(param.type);
  return (param.type & TYPE_TAB) != 0 ? name + "_tab" : name;
}

json ElementJson(const ParamElement& element, int baseType) {
  return std::visit(
      [&](const auto& value) -> json {
        using T = std::decay_t<decltype(value)>;
        if constexpr (std::is_same_v<T, std::monostate>) {
          return nullptr;
        } else if constexpr (std::is_same_v<T, float>) {
          return FloatJson(value);
        } else if constexpr (std::is_same_v<T, int>) {
          if (baseType == TYPE_BOOL && (value == 0 || value == 1)) return value == 1;
          return value;
        } else if constexpr (std::is_same_v<T, Color>) {
          return ColorJson(value);
        } else if constexpr (std::is_same_v<T, Point3>) {
          return PointJson(value);
        } else if constexpr (std::is_same_v<T, std::optional<std::u16string>>) {
          return value ? json(Utf8(*value)) : json(nullptr);
        } else if constexpr (std::is_same_v<T, Animatable*>) {
          return IdOf(value);
        } else {
          return MatrixJson(value);
        }
      },
      element);
}

json ParamJson(const MemParam& param) {
  json out;
  out["name"] = param.name ? json(Utf8(*param.name)) : json(nullptr);
  out["type"] = ParamTypeJson(param);
  int baseType = param.type & ~TYPE_TAB;
  if ((param.type & TYPE_TAB) != 0) {
    json values = json::array();
    for (const ParamElement& element : param.elements)
      values.push_back(ElementJson(element, baseType));
    out["value"] = values;
  } else {
    out["value"] = ElementJson(param.elements.at(0), baseType);
  }
  return out;
}

void WriteCommon(json& out, const AnimatableData& data) {
  out["id"] = data.id;
  out["handle"] = data.handle;
}

void WriteClass(json& out, const AnimatableData& data) {
  out["class"] = Utf8(data.className);
  if (data.classId != Class_ID{})
    out["classId"] = json::array({Hex(data.classId.partA), Hex(data.classId.partB)});
}

void WriteParams(json& out, const AnimatableData& data) {
  if (data.blocks.empty()) return;
  json blocks = json::array();
  for (const auto& block : data.blocks) {
    if (!block) {
      blocks.push_back(nullptr);
      continue;
    }
    json params = json::array();
    for (const MemParam& param : block->params)
      params.push_back(ParamJson(param));
    blocks.push_back(params);
  }
  out["params"] = blocks;
}

json SlotsJson(const std::vector<MapSlot>& slots) {
  json out = json::array();
  for (const MapSlot& slot : slots) {
    json item;
    item["name"] = Utf8(slot.name);
    item["map"] = IdOf(slot.map);
    if (slot.amount != 1) item["amount"] = FloatJson(slot.amount);
    if (!slot.enabled) item["enabled"] = false;
    out.push_back(item);
  }
  return out;
}

json NodeJson(const MemNode& node, const MemNode* root) {
  json out;
  WriteCommon(out, node.data);
  out["name"] = Utf8(node.name);
  if (node.parent != nullptr && node.parent != root) out["parent"] = node.parent->data.id;
  if (node.objectRef != nullptr) out["object"] = IdOf(node.objectRef);
  if (node.worldStateOverride) out["worldState"] = IdOf(*node.worldStateOverride);
  if (node.material != nullptr) out["material"] = IdOf(node.material);
  if (node.target != nullptr) out["target"] = IdOf(node.target);
  if (node.transform != Matrix3{}) out["transform"] = MatrixJson(node.transform);
  return out;
}

json MeshJson(const MemMesh& mesh) {
  json out;
  out["vertices"] = json::array();
  for (const Point3& vertex : mesh.vertices)
    out["vertices"].push_back(PointJson(vertex));
  out["faces"] = json::array();
  for (const MeshFace& face : mesh.faces) {
    json item = json::array({face.v[0], face.v[1], face.v[2]});
    if (face.matId != 0) item.push_back(face.matId);
    out["faces"].push_back(item);
  }
  if (!mesh.vertexColors.empty()) {
    out["vertexColors"] = json::array();
    for (const Point3& color : mesh.vertexColors)
      out["vertexColors"].push_back(PointJson(color));
  }
  if (!mesh.colorFaces.empty()) {
    out["colorFaces"] = json::array();
    for (const auto& face : mesh.colorFaces)
      out["colorFaces"].push_back(json::array({face[0], face[1], face[2]}));
  }
  return out;
}

json ObjectJson(const MemObject& object) {
  json out;
  WriteCommon(out, object.data);
  WriteClass(out, object.data);
  std::string superClass = NameOf(kSuperClasses, object.data.superClassId);
  out["superClass"] = superClass.empty() ? json(Hex(object.data.superClassId)) : json(superClass);
  WriteParams(out, object.data);
  if (object.mesh) out["mesh"] = MeshJson(*object.mesh);
  if (object.isTriObject) out["triObject"] = true;
  if (object.camera) {
    const CameraData& camera = *object.camera;
    out["camera"] = {{"fov", FloatJson(camera.fov)},
                     {"ortho", camera.ortho},
                     {"targetDistance", FloatJson(camera.targetDistance)},
                     {"manualClip", camera.manualClip},
                     {"nearClip", FloatJson(camera.nearClip)},
                     {"farClip", FloatJson(camera.farClip)}};
  }
  return out;
}

json DerivedObjectJson(const MemDerivedObject& object) {
  json out;
  WriteCommon(out, object.data);
  WriteClass(out, object.data);
  WriteParams(out, object.data);
  json modifiers = json::array();
  for (const Modifier* modifier : object.modifiers)
    modifiers.push_back(IdOf(modifier));
  out["derived"] = {{"object", IdOf(object.objRef)}, {"modifiers", modifiers}};
  return out;
}

json ModifierJson(const MemModifier& modifier) {
  json out;
  WriteCommon(out, modifier.data);
  WriteClass(out, modifier.data);
  std::string superClass = NameOf(kSuperClasses, modifier.data.superClassId);
  out["superClass"] = superClass.empty() ? json(Hex(modifier.data.superClassId)) : json(superClass);
  WriteParams(out, modifier.data);
  return out;
}

template <class T>
json MtlBaseJson(const T& item) {
  json out;
  WriteCommon(out, item.data);
  WriteClass(out, item.data);
  out["name"] = Utf8(item.name);
  WriteParams(out, item.data);
  if (!item.slots.empty()) out["slots"] = SlotsJson(item.slots);
  return out;
}

json MaterialJson(const MemMtl& material) {
  json out = MtlBaseJson(material);
  if (!material.subMaterials.empty()) {
    json subs = json::array();
    for (const Mtl* sub : material.subMaterials)
      subs.push_back(IdOf(sub));
    out["subMaterials"] = subs;
  }
  if (material.standard) {
    const StandardMaterialData& standard = *material.standard;
    out["standard"] = {{"diffuse", ColorJson(standard.diffuse)},
                       {"specular", ColorJson(standard.specular)},
                       {"filter", ColorJson(standard.filter)},
                       {"shininess", FloatJson(standard.shininess)},
                       {"shininessStrength", FloatJson(standard.shininessStrength)},
                       {"opacity", FloatJson(standard.opacity)},
                       {"selfIllum", FloatJson(standard.selfIllum)},
                       {"ior", FloatJson(standard.ior)},
                       {"twoSided", standard.twoSided},
                       {"wire", standard.wire}};
  }
  return out;
}

json CurveCtlJson(const MemCurveCtl& control) {
  json curves = json::array();
  for (const auto& curve : control.curves) {
    if (!curve) {
      curves.push_back(nullptr);
      continue;
    }
    json points = json::array();
    for (auto [x, y] : curve->points)
      points.push_back(json::array({FloatJson(x), FloatJson(y)}));
    curves.push_back(points);
  }
  return curves;
}

json MapJson(const MemTexmap& map) {
  json out = MtlBaseJson(map);
  if (map.bitmap) {
    const BitmapData& bitmap = *map.bitmap;
    json item;
    item["mapName"] = Utf8(bitmap.mapName);
    item["loadedGamma"] = bitmap.loadedGamma ? FloatJson(*bitmap.loadedGamma) : json(nullptr);
    if (bitmap.uvGen) {
      const UVGenData& uv = *bitmap.uvGen;
      item["uvGen"] = {{"uScale", FloatJson(uv.uScale)},   {"vScale", FloatJson(uv.vScale)},
                       {"uOffset", FloatJson(uv.uOffset)}, {"vOffset", FloatJson(uv.vOffset)},
                       {"wAngle", FloatJson(uv.wAngle)},   {"tiling", uv.tiling},
                       {"mapChannel", uv.mapChannel}};
    } else {
      item["uvGen"] = nullptr;
    }
    out["bitmap"] = item;
  }
  if (map.monoCurves || map.rgbCurves) {
    json curves;
    if (map.monoCurves) curves["mono"] = CurveCtlJson(*map.monoCurves);
    if (map.rgbCurves) curves["rgb"] = CurveCtlJson(*map.rgbCurves);
    out["curves"] = curves;
  }
  return out;
}

template <class List, class Write>
json ListJson(const List& list, Write write) {
  json out = json::array();
  for (const auto& item : list)
    out.push_back(write(*item));
  return out;
}

void WriteSettings(json& out, const MemScene& scene) {
  out["time"] = scene.time;
  out["unitScale"] = scene.metresPerUnit;
  out["file"] = {{"name", Utf8(scene.fileName)}, {"path", Utf8(scene.filePath)}};
  if (!scene.settingsDirectory.empty()) out["settingsDirectory"] = Utf8(scene.settingsDirectory);
  out["environment"] = {{"background", ColorJson(scene.background)},
                        {"useMap", scene.useEnvironmentMap},
                        {"map", IdOf(scene.environmentMap)}};
}

void WriteServices(json& out, const MemScene& scene) {
  if (!scene.scriptRules.empty()) {
    json rules = json::array();
    for (const ScriptRule& rule : scene.scriptRules) {
      json item;
      item["contains"] = json::array();
      for (const auto& part : rule.contains)
        item["contains"].push_back(Utf8(part));
      if (rule.fails) {
        item["fails"] = true;
      } else {
        item["reply"] = rule.reply ? json(Utf8(*rule.reply)) : json(nullptr);
      }
      rules.push_back(item);
    }
    out["scripts"] = rules;
  }
  if (!scene.fileResolution) {
    out["fileResolution"] = nullptr;
  } else if (!scene.fileResolution->empty()) {
    json answers = json::array();
    for (const FileResolutionAnswer& answer : *scene.fileResolution) {
      answers.push_back({{"path", Utf8(answer.path)},
                         {"assetType", NameOf(kAssetTypes, answer.assetType)},
                         {"answer", Utf8(answer.answer)}});
    }
    out["fileResolution"] = answers;
  }
  if (!scene.fileAliases.empty()) {
    json files = json::object();
    for (const auto& [hostPath, local] : scene.fileAliases)
      files[Utf8(hostPath)] = local;
    out["files"] = files;
  }
  out["export"] = NameOf(kExportBehaviours, scene.exportBehaviour);
}

}  // namespace

std::string WriteSceneText(const MemScene& scene) {
  json out;
  out["format"] = kSceneFormat;
  WriteSettings(out, scene);
  const MemNode* root = scene.nodes().front().get();
  json nodes = json::array();
  for (size_t i = 1; i < scene.nodes().size(); ++i)
    nodes.push_back(NodeJson(*scene.nodes()[i], root));
  out["nodes"] = nodes;
  json objects = ListJson(scene.objects(), ObjectJson);
  for (const auto& derived : scene.derivedObjects())
    objects.push_back(DerivedObjectJson(*derived));
  out["objects"] = objects;
  out["modifiers"] = ListJson(scene.modifiers(), ModifierJson);
  out["materials"] = ListJson(scene.materials(), MaterialJson);
  out["maps"] = ListJson(scene.maps(), MapJson);
  WriteServices(out, scene);
  return out.dump(2) + "\n";
}

}  // namespace orvane::host::memory
