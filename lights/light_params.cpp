#include <span>

#include "graph/param_json.h"
#include "graph/param_lookup.h"
#include "host/object.h"
#include "lights/lights.h"

namespace orvane {

namespace {

struct LightRow {
  std::u16string_view host, key;
  bool inMetres = false;  // a float length, converted; anything else writes nothing
};

constexpr bool M = true;

constexpr LightRow kCoronaLightRows[] = {
    {u"on", u"on"},
    {u"shape", u"shape"},
    {u"width", u"width", M},
    {u"height", u"height", M},
    {u"intensity", u"intensity"},
    {u"intensityUnits", u"intensity_units"},
    {u"color", u"color"},
    {u"colorMode", u"color_mode"},
    {u"blackbodyTemp", u"temperature"},
    {u"directionality", u"directionality"},
    {u"targeted", u"targeted"},
    {u"twosidedEmission", u"twosided_emission"},
    {u"visibleDirectly", u"visible_directly"},
    {u"visibleRefl", u"visible_refl"},
    {u"visibleRefr", u"visible_refr"},
    {u"iesOn", u"ies_on"},
    {u"shadowcatcherIlluminator", u"shadowcatcher_illuminator"},
    {u"occludeOtherLights", u"occlude_other_lights"}};

constexpr LightRow kCoronaSunRows[] = {{u"on", u"on"},
                                       {u"intensity", u"intensity"},
                                       {u"colorDirect", u"color"},
                                       {u"colorMode", u"color_mode"},
                                       {u"blackbodyTemperature", u"temperature"},
                                       {u"sizeMultiplier", u"size_multiplier"},
                                       {u"targeted", u"targeted"},
                                       {u"targetDistance", u"target_distance", M},
                                       {u"visibleDirectly", u"visible_directly"},
                                       {u"visibleRefl", u"visible_refl"},
                                       {u"visibleRefr", u"visible_refr"},
                                       {u"shadowsFromClouds", u"shadows_from_clouds"}};

// V-Ray sizes and distances stay in system units, unlike Corona's.
constexpr LightRow kVRayLightRows[] = {{u"on", u"on"},
                                       {u"type", u"vray_light_type"},
                                       {u"targeted", u"targeted"},
                                       {u"target_distance", u"target_distance"},
                                       {u"color", u"color"},
                                       {u"color_mode", u"color_mode"},
                                       {u"color_temperature", u"temperature"},
                                       {u"multiplier", u"intensity"},
                                       {u"normalizeColor", u"intensity_units"},
                                       {u"size0", u"half_width"},
                                       {u"size1", u"half_height"},
                                       {u"size2", u"half_depth"},
                                       {u"sizeWidth", u"width"},
                                       {u"sizeLength", u"height"},
                                       {u"DoubleSided", u"twosided_emission"},
                                       {u"invisible", u"invisible"},
                                       {u"castShadows", u"cast_shadows"},
                                       {u"noDecay", u"no_decay"},
                                       {u"skylightPortal", u"portal"},
                                       {u"dome_spherical", u"dome_spherical"}};

constexpr LightRow kVRaySunRows[] = {{u"enabled", u"on"},
                                     {u"intensity_multiplier", u"intensity"},
                                     {u"size_multiplier", u"size_multiplier"},
                                     {u"filter_Color", u"color"},
                                     {u"color_mode", u"color_mode"},
                                     {u"turbidity", u"turbidity"},
                                     {u"invisible", u"invisible"}};

constexpr LightRow kVRayIesRows[] = {{u"enabled", u"on"},
                                     {u"power", u"power"},
                                     {u"override_intensity", u"override_intensity"},
                                     {u"intensity_value", u"intensity_value"},
                                     {u"intensity_type", u"intensity_type"},
                                     {u"color", u"color"},
                                     {u"color_mode", u"color_mode"},
                                     {u"color_temperature", u"temperature"},
                                     {u"filter_color", u"filter_color"},
                                     {u"use_light_shape", u"use_light_shape"},
                                     {u"shape", u"shape"},
                                     {u"shape_actual", u"shape_actual"},
                                     {u"override_shape", u"override_shape"},
                                     {u"cast_shadows", u"cast_shadows"},
                                     {u"targeted", u"targeted"}};

constexpr LightRow kPhotometricRows[] = {{u"on", u"on"},
                                         {u"intensity", u"intensity"},
                                         {u"intensityType", u"intensity_type"},
                                         {u"intensityAt", u"intensity_at"},
                                         {u"Distribution", u"distribution"},
                                         {u"rgbFilter", u"color"},
                                         {u"useKelvin", u"use_kelvin"},
                                         {u"kelvin", u"temperature"},
                                         {u"targeted", u"targeted"}};

enum class TargetRule { kTargetedParam, kNever, kTargetNode };

struct LightWriter {
  std::span<const LightRow> rows;
  TargetRule target;
};

LightWriter WriterFor(LightKind kind) {
  switch (kind) {
    case LightKind::kCoronaLight: return {kCoronaLightRows, TargetRule::kTargetedParam};
    case LightKind::kCoronaSun: return {kCoronaSunRows, TargetRule::kTargetedParam};
    case LightKind::kVRayLight: return {kVRayLightRows, TargetRule::kNever};
    case LightKind::kVRaySun: return {kVRaySunRows, TargetRule::kTargetNode};
    case LightKind::kVRayIES: return {kVRayIesRows, TargetRule::kTargetNode};
    case LightKind::kPhotometricLight: return {kPhotometricRows, TargetRule::kTargetNode};
    case LightKind::kNone: break;
  }
  return {{}, TargetRule::kNever};
}

bool WithTarget(TargetRule rule, const host::Object& light, host::INode& node, host::TimeValue t) {
  switch (rule) {
    case TargetRule::kTargetedParam: {
      ParamValue targeted = FindParamValue(&light, u"targeted", t);
      return targeted.kind == ParamKind::kBool && targeted.boolValue;
    }
    case TargetRule::kTargetNode: return node.GetTarget() != nullptr;
    case TargetRule::kNever: break;
  }
  return false;
}

}  // namespace

FragmentList WriteLightParams(const LightContext& context, LightKind kind, host::INode& node) {
  host::TimeValue t = context.write.time;
  FragmentList fragments;
  host::Object* light = node.EvalWorldState(t);
  if (light == nullptr) return fragments;
  LightWriter writer = WriterFor(kind);
  for (const LightRow& row : writer.rows) {
    if (!row.inMetres) {
      AppendParamJson(fragments, light, t, row.host, row.key);
      continue;
    }
    ParamValue length = FindParamValue(light, row.host, t);
    if (length.kind != ParamKind::kFloat) continue;
    float metres = static_cast<float>(length.floatValue * context.unitScale);
    fragments.push_back(MakeFragment(row.key, FormatJsonNumber(metres)));
  }
  bool withTarget = WithTarget(writer.target, *light, node, t);
  fragments.push_back(WriteLightTransform(context.write, node, context.unitScale, withTarget));
  return fragments;
}

}  // namespace orvane
