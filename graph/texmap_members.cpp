#include "graph/texmap_members.h"

#include <algorithm>

#include "base/wide_text.h"
#include "graph/param_json.h"
#include "graph/script_probes.h"
#include "graph/slot_switch.h"

namespace orvane {

namespace {

ParamValue Element(const RowRun& run, std::u16string_view table, int index) {
  return FindParamTabValue(&run.object, table, index, run.context.time);
}

// Element `index` of `table` as JSON, or "null" when it is missing or not of `kind`.
std::u16string ElementJson(const RowRun& run, std::u16string_view table, int index,
                           ParamKind kind) {
  ParamValue value = Element(run, table, index);
  return value.kind == kind ? FormatParamValueJson(value) : u"null";
}

std::u16string AlignedArray(const RowRun& run, std::u16string_view table, int count,
                            ParamKind kind) {
  std::u16string out = u"[";
  for (int i = 0; i < count; ++i) {
    if (i > 0) out += u',';
    out += ElementJson(run, table, i, kind);
  }
  return out + u"]";
}

int TableCount(const RowRun& run, std::u16string_view table) {
  return std::max(0, FindParamTabCount(&run.object, table));
}

bool BoolElement(const RowRun& run, std::u16string_view table, int index, bool otherwise) {
  ParamValue value = Element(run, table, index);
  return value.kind == ParamKind::kBool ? value.boolValue : otherwise;
}

void CompositeMapLayers(RowRun& run, const ParamRow& row) {
  int layers = TableCount(run, row.hostName);
  run.Append(u"num_layers", Decimal(layers));
  std::u16string list = u"[";
  for (int i = 0; i < layers; ++i) {
    ParamValue mode = Element(run, u"blendMode", i);
    ParamValue opacity = Element(run, u"opacity", i);
    std::u16string layerOn = FormatJsonBool(BoolElement(run, u"mapEnabled", i, true));
    if (i > 0) list += u',';
    list += u"{\"index\":" + Decimal(i + 1) + u",\"blend_mode\":" +
            Decimal(mode.kind == ParamKind::kInt ? mode.intValue : 0) + u",\"opacity\":" +
            FormatJsonNumber(opacity.kind == ParamKind::kFloat ? opacity.floatValue : 100.0f) +
            u",\"layer_enabled\":" + layerOn + u",\"mask_enabled\":" +
            FormatJsonBool(BoolElement(run, u"maskEnabled", i, true)) + u",\"enabled\":" + layerOn +
            u"}";
  }
  run.Append(u"layers", list + u"]");
}

void CompositeMtlLayers(RowRun& run, const ParamRow& row) {
  int layers = TableCount(run, row.hostName);
  run.Append(u"num_layers", Decimal(layers));
  std::u16string list = u"[";
  for (int i = 0; i < layers; ++i) {
    ParamValue mix = Element(run, u"mixType", i);
    ParamValue amount = Element(run, u"amount", i);
    if (i > 0) list += u',';
    list += u"{\"index\":" + Decimal(i + 1) + u",\"mix_type\":" +
            Decimal(mix.kind == ParamKind::kInt ? mix.intValue : 0) + u",\"amount\":" +
            FormatJsonNumber(amount.kind == ParamKind::kFloat ? amount.floatValue : 100.0f) +
            u",\"enabled\":" + FormatJsonBool(BoolElement(run, u"mapEnables", i, true)) + u"}";
  }
  run.Append(u"layers", list + u"]");
}

void SlotSwitch(RowRun& run, const ParamRow& row) {
  std::optional<bool> on = FindSlotToggle(run.object, row.hostName, run.context.time);
  run.Append(row.jsonKey, FormatJsonBool(on.value_or(true)));
}

void CoronaLayeredArrays(RowRun& run, const ParamRow& row) {
  int layers = TableCount(run, row.hostName);
  run.Append(u"layer_count", Decimal(layers));
  std::u16string amounts = u"[";
  for (int i = 0; i < layers; ++i) {
    ParamValue amount = Element(run, u"amounts", i);
    if (i > 0) amounts += u',';
    amounts += FormatJsonNumber(amount.kind == ParamKind::kFloat ? amount.floatValue : 1.0f);
  }
  run.Append(u"layer_amounts", amounts + u"]");
  run.Append(u"mask_amounts", AlignedArray(run, u"maskAmounts", layers, ParamKind::kFloat));
  run.Append(u"layers_on", AlignedArray(run, u"layersOn", layers, ParamKind::kBool));
  run.Append(u"masks_on", AlignedArray(run, u"masksOn", layers, ParamKind::kBool));
}

void CoronaMultimapItems(RowRun& run, const ParamRow& row) {
  ParamValue items = run.Find(row.hostName);
  int count = items.kind == ParamKind::kInt ? std::max(0, items.intValue) : 0;
  run.Append(u"item_count", Decimal(count));
  run.Append(u"colors", AlignedArray(run, u"colors", count, ParamKind::kColor));
  run.Append(u"frequency", AlignedArray(run, u"frequency", count, ParamKind::kFloat));
  run.Append(u"map_enabled", AlignedArray(run, u"texmapsOn", count, ParamKind::kBool));
  static constexpr std::pair<std::u16string_view, std::u16string_view> kModes[] = {
      {u"randomizePrimitive", u"primitive"},
      {u"randomizeSubPrimitive", u"sub_primitive"},
      {u"randomizePolygon", u"polygon"},
      {u"randomizeMeshElement", u"mesh_element"}};
  std::u16string modes = u"{";
  for (auto [host, key] : kModes) {
    ParamValue on = run.Find(host);
    if (modes.size() > 1) modes += u',';
    modes += u"\"" + std::u16string(key) + u"\":" +
             FormatJsonBool(on.kind == ParamKind::kBool && on.boolValue);
  }
  run.Append(u"randomize_by", modes + u"}");
}

// The ray-switch material's sub-materials are, in order, direct, GI, reflection and refraction;
// a source parameter picks one of them by that index.
void RaySwitchSources(RowRun& run, const ParamRow&) {
  static constexpr std::u16string_view kSlots[] = {u"direct", u"gi", u"reflect", u"refract"};
  const auto& material = static_cast<const host::Mtl&>(run.object);
  for (auto [param, key] : {std::pair{u"viewportSource", u"viewport_source"},
                            std::pair{u"displacementSource", u"displacement_source"}}) {
    ParamValue source = run.Find(param);
    bool known = source.kind == ParamKind::kInt && source.intValue >= 0 && source.intValue < 4;
    std::u16string slot = known ? u"\"" + std::u16string(kSlots[source.intValue]) + u"\"" : u"null";
    const host::Mtl* chosen = known && run.object.SuperClassID() == host::MATERIAL_CLASS_ID
                                  ? material.GetSubMtl(source.intValue)
                                  : nullptr;
    run.Append(std::u16string(key) + u"_slot", slot);
    run.Append(std::u16string(key) + u"_material",
               chosen != nullptr ? u"\"" + EscapeJsonString(chosen->GetName()) + u"\"" : u"null");
  }
}

void ScatterMapItems(RowRun& run, const ParamRow& row) {
  int count = std::max(TableCount(run, row.hostName), TableCount(run, u"problist"));
  run.Append(u"map_count", Decimal(count));
  std::u16string list = u"[";
  for (int i = 0; i < count; ++i) {
    if (i > 0) list += u',';
    list += u"{\"index\":" + Decimal(i + 1) + u",\"on\":" +
            ElementJson(run, u"maponlist", i, ParamKind::kBool) + u",\"probability\":" +
            ElementJson(run, u"problist", i, ParamKind::kFloat) + u"}";
  }
  run.Append(u"map_items", list + u"]");
}

// The morpher material keeps its base material in its first sub-material slot.
void MorpherBase(RowRun& run, const ParamRow& row) {
  run.Append(row.jsonKey, u"1");
}

void MultiTextureSwitches(RowRun& run, const ParamRow& row) {
  int textures = run.object.NumSubTexmaps();
  run.Append(u"num_textures", Decimal(textures));
  run.Append(u"submap_on", AlignedArray(run, row.hostName, textures, ParamKind::kBool));
}

void VRayMultiSubSlots(RowRun& run, const ParamRow& row) {
  static constexpr std::u16string_view kModes[] = {
      u"random_by_node_handle", u"random_by_render_id",   u"random_by_name",
      u"random_by_particle_id", u"random_by_instance_id", u"random_by_face_mtl_id",
      u"random_by_object_id",   u"random_by_element"};
  ParamValue mode = run.Find(row.hostName);
  bool known = mode.kind == ParamKind::kInt && mode.intValue >= 0 && mode.intValue < 8;
  run.Append(u"random_by", known ? u"\"" + std::u16string(kModes[mode.intValue]) + u"\"" : u"null");
  ParamValue declared = run.Find(u"texmap_num");
  int slots = declared.kind == ParamKind::kInt ? std::max(0, declared.intValue) : 0;
  for (auto table :
       {u"texmap_id", u"texmap_on", u"texmap_color", u"texmap_mult", u"texmap_mapOn"}) {
    slots = std::max(slots, TableCount(run, table));
  }
  run.Append(u"slot_ids", AlignedArray(run, u"texmap_id", slots, ParamKind::kInt));
  run.Append(u"slot_on", AlignedArray(run, u"texmap_on", slots, ParamKind::kBool));
  std::u16string colors = u"[";
  for (int i = 0; i < slots; ++i) {
    if (i > 0) colors += u',';
    ParamValue color = Element(run, u"texmap_color", i);
    colors += color.kind == ParamKind::kColor ? FormatJsonColor(color.color) : u"[1,1,1]";
  }
  run.Append(u"slot_colors", colors + u"]");
  run.Append(u"slot_mults", AlignedArray(run, u"texmap_mult", slots, ParamKind::kFloat));
  run.Append(u"slot_map_on", AlignedArray(run, u"texmap_mapOn", slots, ParamKind::kBool));
}

}  // namespace

const RowRule kCompositeMapLayers{CompositeMapLayers,
                                  u"\"num_layers\" (count of \"blendMode\"), then \"layers\": "
                                  u"[{index (1-based), blend_mode, opacity (0-100), layer_enabled, "
                                  u"mask_enabled, enabled}]"};
const RowRule kCompositeMtlLayers{CompositeMtlLayers,
                                  u"\"num_layers\" (count of \"amount\"), then \"layers\": "
                                  u"[{index (1-based), mix_type, amount (0-100), enabled}]"};
const RowRule kSlotSwitch{SlotSwitch, u"the slot's on/off toggle; true when it has none"};
const RowRule kCoronaLayeredArrays{
    CoronaLayeredArrays,
    u"\"layer_count\" (count of \"amounts\"), then arrays aligned by layer: \"layer_amounts\" "
    u"(1 when missing), \"mask_amounts\", \"layers_on\", \"masks_on\" (null when missing)"};
const RowRule kCoronaMultimapItems{
    CoronaMultimapItems,
    u"\"item_count\" (from \"items\"), arrays aligned by item \"colors\", \"frequency\", "
    u"\"map_enabled\" (from \"texmapsOn\"; null when missing), and \"randomize_by\": "
    u"{primitive, sub_primitive, polygon, mesh_element}"};
const RowRule kRaySwitchSources{
    RaySwitchSources,
    u"\"viewport_source_slot\", \"viewport_source_material\", \"displacement_source_slot\", "
    u"\"displacement_source_material\": the slot (direct, gi, reflect, refract) the source index "
    u"picks and that sub-material's name; null when unknown"};
const RowRule kScatterMapItems{
    ScatterMapItems,
    u"\"map_count\", then \"map_items\": [{index (1-based), on (from "
    u"\"maponlist\"), probability (from \"problist\")}], null when missing"};
const RowRule kMorpherBase{MorpherBase, u"always 1: the base material is sub-material 1"};
const RowRule kMultiTextureSwitches{
    MultiTextureSwitches,
    u"\"num_textures\" (sub-map count), then \"submap_on\": booleans aligned by sub-map, null "
    u"when missing"};
const RowRule kVRayMultiSubSlots{
    VRayMultiSubSlots,
    u"\"random_by\": the mode's name (random_by_node_handle, _render_id, _name, _particle_id, "
    u"_instance_id, _face_mtl_id, _object_id, _element) or null; then arrays aligned by slot: "
    u"\"slot_ids\", \"slot_on\", \"slot_colors\" ([1,1,1] when missing), \"slot_mults\", "
    u"\"slot_map_on\""};
const RowRule kGradientProbe{
    [](RowRun& run, const ParamRow&) {
      AppendGradientProbe(run.fragments, run.context, run.object);
    },
    u"gradient probe: gradient_type, noise_type, noise_amount, noise_size, noise_phase, "
    u"noise_levels, then \"keys\": [{pos, color}] sorted by position"};

}  // namespace orvane
