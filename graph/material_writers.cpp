#include "graph/material_writers.h"

#include <algorithm>
#include <cmath>

#include "base/wide_text.h"
#include "graph/param_json.h"

namespace orvane {

float ReflectivityToIor(float reflectivity) {
  if (reflectivity <= 0) return 1.0f;
  float s = std::sqrt(std::min(12.4f, reflectivity) * 0.08f);
  return (1 + s) / (1 - s);
}

namespace {

// An integer mode, or a boolean read as 1 or 0; nullopt for anything else.
std::optional<int> ReadMode(const RowRun& run, std::u16string_view name) {
  ParamValue value = run.Find(name);
  if (value.kind == ParamKind::kInt) return value.intValue;
  if (value.kind == ParamKind::kBool) return value.boolValue ? 1 : 0;
  return std::nullopt;
}

void AppendFloat(RowRun& run, std::u16string_view key, float value) {
  run.Append(key, FormatJsonNumber(value));
}

std::optional<float> ReadFloat(const RowRun& run, std::u16string_view name) {
  ParamValue value = run.Find(name);
  if (value.kind != ParamKind::kFloat) return std::nullopt;
  return value.floatValue;
}

const RowRule kRoughnessMode{[](RowRun& run, const ParamRow& row) {
                               std::optional<int> mode = ReadMode(run, row.hostName);
                               run.roughnessMode = mode.value_or(0);
                               if (mode)
                                 run.Append(row.jsonKey, AsciiToWide(std::to_string(*mode)));
                             },
                             u"integer or boolean (as 1/0) mode; later roughness rows use it"};

// The key holds a glossiness: the roughness is inverted unless the mode says it is one already.
const RowRule kGlossinessFromRoughness{
    [](RowRun& run, const ParamRow& row) {
      if (auto value = ReadFloat(run, row.hostName)) {
        AppendFloat(run, row.jsonKey, run.roughnessMode == 1 ? *value : 1 - *value);
      }
    },
    u"float; roughness mode 1: as stored, otherwise 1 - value"};

// The key holds a roughness: inverted when the mode is 1.
const RowRule kRoughnessInvertedInMode1{
    [](RowRun& run, const ParamRow& row) {
      if (auto value = ReadFloat(run, row.hostName)) {
        AppendFloat(run, row.jsonKey, run.roughnessMode == 1 ? 1 - *value : *value);
      }
    },
    u"float; roughness mode 1: 1 - value, otherwise as stored"};

const RowRule kIorMode{[](RowRun& run, const ParamRow& row) {
                         std::optional<int> mode = ReadMode(run, row.hostName);
                         run.iorMode = mode.value_or(0);
                         if (mode) run.Append(row.jsonKey, AsciiToWide(std::to_string(*mode)));
                       },
                       u"integer or boolean (as 1/0) mode; later IOR rows use it"};

const RowRule kIorFromReflectivityInMode1{
    [](RowRun& run, const ParamRow& row) {
      if (auto value = ReadFloat(run, row.hostName)) {
        AppendFloat(run, row.jsonKey, run.iorMode == 1 ? ReflectivityToIor(*value) : *value);
      }
    },
    u"float; IOR mode 1: converted from reflectivity, otherwise as stored"};

const RowRule kMetalnessMode{[](RowRun& run, const ParamRow& row) {
                               ParamValue value = run.Find(row.hostName);
                               if (value.kind == ParamKind::kBool) {
                                 run.Append(row.jsonKey, FormatJsonBool(value.boolValue));
                               } else if (value.kind == ParamKind::kInt) {
                                 run.Append(row.jsonKey, FormatJsonBool(value.intValue == 1));
                               }
                             },
                             u"boolean; an integer is true when it is 1"};

const RowRule kAbsorptionDistance{
    [](RowRun& run, const ParamRow& row) {
      std::optional<float> distance = ReadFloat(run, row.hostName);
      if (!distance) distance = ReadFloat(run, u"attenuationDistance");
      if (!distance) return;
      double centimetres = run.context.scene.GetSystemUnitScale(host::UNITS_CENTIMETERS);
      AppendFloat(run, row.jsonKey, static_cast<float>(*distance * centimetres));
    },
    u"float (or \"attenuationDistance\"), scene units converted to centimetres"};

constexpr const RowRule* P = &kPercent;

const ParamRow kCoronaRows[] = {
    {u"mapAmountDiffuse", u"amt_diffuse", P},
    {u"mapamountReflect", u"amt_reflect", P},
    {u"mapamountRefract", u"amt_refract", P},
    {u"mapamountReflectGlossiness", u"amt_reflect_glossiness", P},
    {u"mapamountRefractGlossiness", u"amt_refract_glossiness", P},
    {u"mapamountOpacity", u"amt_opacity", P},
    {u"mapamountBump", u"amt_bump"},  // the one amount the host already stores as written
    {u"mapamountTranslucency", u"amt_translucency", P},
    {u"mapamountAnisotropy", u"amt_anisotropy", P},
    {u"mapamountAnisotropyRotation", u"amt_anisotropy_rotation", P},
    {u"mapamountIor", u"amt_ior", P},
    {u"mapamountFresnelIor", u"amt_fresnel_ior", P},
    {u"mapamountSelfIllum", u"amt_self_illum", P},
    {u"mapamountTranslucencyFraction", u"amt_translucency_fraction", P},
    {u"mapamountAbsorption", u"amt_absorption", P},
    {u"mapamountScatterColor", u"amt_scatter_color", P},
    {u"mapamountSssAmount", u"amt_sss_amount", P},
    {u"mapamountSssRadius", u"amt_sss_radius", P},
    {u"mapamountSssScatterColor", u"amt_sss_scatter_color", P},
    {u"baseMapAmount", u"amt_diffuse", P},
    {u"baseRoughnessMapAmount", u"amt_reflect_glossiness", P},
    {u"baseIorMapAmount", u"amt_fresnel_ior", P},
    {u"baseAnisotropyMapAmount", u"amt_anisotropy", P},
    {u"baseAnisoRotationMapAmount", u"amt_anisotropy_rotation", P},
    {u"opacityMapAmount", u"amt_opacity", P},
    {u"refractionAmountMapAmount", u"amt_refract", P},
    {u"selfillumMapAmount", u"amt_self_illum", P},
    {u"clearcoatAmountMapAmount", u"amt_clearcoat_amount", P},
    {u"clearcoatIorMapAmount", u"amt_clearcoat_ior", P},
    {u"clearcoatRoughnessMapAmount", u"amt_clearcoat_roughness", P},
    {u"volumetricAbsorptionMapAmount", u"amt_absorption", P},
    {u"volumetricScatteringMapAmount", u"amt_scatter_color", P},
    {u"sssAmountMapAmount", u"amt_sss_amount", P},
    {u"sssRadiusMapAmount", u"amt_sss_radius", P},
    {u"sssScatterMapAmount", u"amt_sss_scatter_color", P},
    {u"baseColor", u"diffuse_color"},
    {u"baseLevel", u"diffuse_level"},
    {u"roughnessMode", u"roughness_mode", &kRoughnessMode},
    {u"baseRoughness", u"reflect_glossiness", &kGlossinessFromRoughness},
    {u"clearcoatRoughness", u"coat_roughness", &kRoughnessInvertedInMode1},
    {u"iorMode", u"ior_mode", &kIorMode},
    {u"baseIor", u"fresnel_ior", &kIorFromReflectivityInMode1},
    {u"edgeColor", u"reflect_color"},
    {u"refractionAmount", u"refract_level"},
    {u"useThinMode", u"thin_walled"},
    {u"selfIllumColor", u"emission_color"},
    {u"selfIllumLevel", u"emission_level"},
    {u"clearcoatAmount", u"clearcoat_amount"},
    {u"clearcoatIor", u"clearcoat_ior", &kIorFromReflectivityInMode1},
    {u"sheenAmount", u"sheen_amount"},
    {u"sheenColor", u"sheen_color"},
    {u"sheenRoughness", u"sheen_roughness", &kRoughnessInvertedInMode1},
    {u"sheenAmountMapAmount", u"amt_sheen_amount", P},
    {u"sheenColorMapAmount", u"amt_sheen_color", P},
    {u"sheenRoughnessMapAmount", u"amt_sheen_roughness", P},
    {u"sssAmount", u"sss_amount"},
    {u"sssScatterColor", u"sss_color"},
    {u"sssRadius", u"sss_radius"},
    {u"metalnessMode", u"metalness_mode", &kMetalnessMode},
    {u"colorDiffuse", u"diffuse_color"},
    {u"diffuseColor", u"diffuse_color"},
    {u"levelDiffuse", u"diffuse_level"},
    {u"diffuseLevel", u"diffuse_level"},
    {u"colorReflect", u"reflect_color"},
    {u"reflectColor", u"reflect_color"},
    {u"levelReflect", u"reflect_level"},
    {u"reflectGlossiness", u"reflect_glossiness"},
    {u"fresnelIor", u"fresnel_ior"},
    {u"reflectIOR", u"reflect_ior"},
    {u"metalness", u"metalness"},
    {u"baseMetalness", u"metalness"},
    {u"metalnessAmount", u"metalness"},
    {u"metalAmount", u"metalness"},
    {u"pbrMode", u"pbr_mode"},
    {u"colorRefract", u"refract_color"},
    {u"refractColor", u"refract_color"},
    {u"levelRefract", u"refract_level"},
    {u"refractGlossiness", u"refract_glossiness"},
    {u"ior", u"refraction_ior"},
    {u"refractionIOR", u"refraction_ior"},
    {u"thin", u"thin_walled"},
    {u"colorOpacity", u"opacity_color"},
    {u"levelOpacity", u"opacity_level"},
    {u"alphaMode", u"alpha_mode"},
    {u"colorSelfIllum", u"emission_color"},
    {u"selfIllumination", u"emission_color"},
    {u"levelSelfIllum", u"emission_level"},
    {u"selfIlluminationMultiplier", u"emission_multiplier"},
    {u"levelSss", u"sss_amount"},
    {u"useSss", u"use_sss"},
    {u"sssColor", u"sss_color"},
    {u"anisotropy", u"anisotropy"},
    {u"baseAnisotropy", u"anisotropy"},
    {u"anisotropyAmount", u"anisotropy"},
    {u"anisotropyRotation", u"anisotropy_rotation"},
    {u"baseAnisotropyRotation", u"anisotropy_rotation"},
    {u"levelTranslucency", u"translucency_level"},
    {u"colorTranslucency", u"translucency_color"},
    {u"mapamountTranslucency", u"translucency_map_amount", P},
    {u"translucencyFraction", u"translucency_level"},
    {u"translucencyColor", u"translucency_color"},
    {u"translucencyFractionMapAmount", u"translucency_map_amount", P},
    {u"useThinMode", u"use_thin_mode"},
    {u"mapamountBump", u"bump_amount"},
    {u"baseBumpMapAmount", u"bump_amount"},
    {u"clearcoatBumpMapAmount", u"clearcoat_bump_amount"},
    {u"absorptionColor", u"absorption_color"},
    {u"volumetricAbsorptionColor", u"absorption_color"},
    {u"absorptionDistance", u"absorption_distance", &kAbsorptionDistance},
    {u"scatterColor", u"volume_scatter_color"},
    {u"volumetricScatteringColor", u"volume_scatter_color"},
    {u"scatterDirectionality", u"volume_scatter_directionality"},
    {u"scatterSingleBounce", u"volume_scatter_single_bounce"},
    {u"displacementMinimum", u"displacement_min"},
    {u"displacementMaximum", u"displacement_max"},
    {u"displacementWaterLevel", u"displacement_water_level"},
    {u"displacementWaterLevelOn", u"displacement_water_level_on"},
    {u"baseDisplacementMin", u"displacement_min"},
    {u"baseDisplacementMax", u"displacement_max"},
    {u"baseDisplacementWaterLevel", u"displacement_water_level"},
    {u"npEnable", u"np_enable"},
    {u"npReflectionLevel", u"np_reflection_level"},
    {u"npReflectionColor", u"np_reflection_color"},
    {u"npRefractionLevel", u"np_refraction_level"},
    {u"npRefractionColor", u"np_refraction_color"},
};

// V-Ray keeps its map multipliers in percent already: all rows are plain.
const ParamRow kVRayRows[] = {
    {u"Diffuse", u"diffuse"},
    {u"diffuse_roughness", u"diffuse_roughness"},
    {u"selfIllumination", u"self_illumination"},
    {u"selfIllumination_multiplier", u"self_illumination_multiplier"},
    {u"selfIllumination_gi", u"self_illumination_gi"},
    {u"Reflection", u"reflection"},
    {u"reflection_glossiness", u"reflection_glossiness"},
    {u"hilight_glossiness", u"hilight_glossiness"},
    {u"reflection_fresnel", u"reflection_fresnel"},
    {u"reflection_IOR", u"reflection_ior"},
    {u"reflection_metalness", u"reflection_metalness"},
    {u"reflection_lockGlossiness", u"reflection_lock_glossiness"},
    {u"reflection_lockIOR", u"reflection_lock_ior"},
    {u"Refraction", u"refraction"},
    {u"refraction_glossiness", u"refraction_glossiness"},
    {u"refraction_ior", u"refraction_ior"},
    {u"refraction_fogColor", u"refraction_fog_color"},
    {u"refraction_fogMult", u"refraction_fog_mult"},
    {u"refraction_fogDepth", u"refraction_fog_depth"},
    {u"refraction_fogBias", u"refraction_fog_bias"},
    {u"refraction_fogUnitsScale_on", u"refraction_fog_units_scale_on"},
    {u"refraction_thinWalled", u"refraction_thin_walled"},
    {u"refraction_dispersion", u"refraction_dispersion"},
    {u"refraction_dispersion_on", u"refraction_dispersion_on"},
    {u"refraction_affectShadows", u"refraction_affect_shadows"},
    {u"translucency_on", u"translucency_mode"},
    {u"translucency_amount", u"translucency_amount"},
    {u"translucency_thickness", u"translucency_thickness"},
    {u"translucency_scatterCoeff", u"translucency_scatter_coeff"},
    {u"translucency_fbCoeff", u"translucency_fb_coeff"},
    {u"translucency_multiplier", u"translucency_multiplier"},
    {u"translucency_color", u"translucency_color"},
    {u"translucency_surfaceLighting", u"translucency_surface_lighting"},
    {u"coat_color", u"coat_color"},
    {u"coat_amount", u"coat_amount"},
    {u"coat_glossiness", u"coat_glossiness"},
    {u"coat_ior", u"coat_ior"},
    {u"coat_bump_lock", u"coat_bump_lock"},
    {u"sheen_color", u"sheen_color"},
    {u"sheen_glossiness", u"sheen_glossiness"},
    {u"thinFilm_on", u"thin_film_on"},
    {u"thinFilm_thickness_min", u"thin_film_thickness_min"},
    {u"thinFilm_thickness_max", u"thin_film_thickness_max"},
    {u"thinFilm_ior", u"thin_film_ior"},
    {u"brdf_type", u"brdf_type"},
    {u"gtr_gamma", u"gtr_gamma"},
    {u"brdf_useRoughness", u"brdf_use_roughness"},
    {u"anisotropy", u"anisotropy"},
    {u"anisotropy_rotation", u"anisotropy_rotation"},
    {u"anisotropy_derivation", u"anisotropy_derivation"},
    {u"Soften", u"soften"},
    {u"option_opacityMode", u"opacity_mode"},
    {u"option_glossyFresnel", u"option_glossy_fresnel"},
    {u"option_doubleSided", u"option_double_sided"},
    {u"option_reflectOnBack", u"option_reflect_on_back"},
    {u"option_traceReflection", u"option_trace_reflection"},
    {u"option_traceRefraction", u"option_trace_refraction"},
    {u"texmap_diffuse_multiplier", u"amt_diffuse"},
    {u"texmap_reflection_multiplier", u"amt_reflect"},
    {u"texmap_refraction_multiplier", u"amt_refract"},
    {u"texmap_bump_multiplier", u"amt_bump"},
    {u"texmap_reflectionGlossiness_multiplier", u"amt_reflect_glossiness"},
    {u"texmap_refractionGlossiness_multiplier", u"amt_refract_glossiness"},
    {u"texmap_refractionIOR_multiplier", u"amt_ior"},
    {u"texmap_reflectionIOR_multiplier", u"amt_fresnel_ior"},
    {u"texmap_opacity_multiplier", u"amt_opacity"},
    {u"texmap_metalness_multiplier", u"amt_metalness"},
    {u"texmap_self_multiplier", u"amt_self_illum"},
    {u"texmap_translucent_multiplier", u"amt_translucency"},
    {u"texmap_anisotropy_multiplier", u"amt_anisotropy"},
    {u"texmap_displacement_multiplier", u"amt_displacement"},
    {u"texmap_coat_multiplier", u"amt_coat_amount"},
    {u"texmap_sheen_multiplier", u"amt_sheen_color"},
};

const ParamRow kPhysicalRows[] = {
    {u"base_weight", u"base_weight"},
    {u"base_color", u"base_color"},
    {u"reflectivity", u"reflectivity"},
    {u"refl_color", u"refl_color"},
    {u"roughness", u"roughness"},
    {u"roughness_inv", u"roughness_inv"},
    {u"metalness", u"metalness"},
    {u"diff_roughness", u"diff_roughness"},
    {u"anisotropy", u"anisotropy"},
    {u"anisoangle", u"aniso_angle"},
    {u"transparency", u"transparency"},
    {u"trans_color", u"trans_color"},
    {u"trans_depth", u"trans_depth"},
    {u"trans_roughness", u"trans_roughness"},
    {u"trans_roughness_inv", u"trans_roughness_inv"},
    {u"trans_ior", u"trans_ior"},
    {u"thin_walled", u"thin_walled"},
    {u"scattering", u"scattering"},
    {u"sss_color", u"sss_color"},
    {u"sss_depth", u"sss_depth"},
    {u"sss_scale", u"sss_scale"},
    {u"sss_scatter_color", u"sss_scatter_color"},
    {u"emission", u"emission"},
    {u"emit_color", u"emit_color"},
    {u"emit_luminance", u"emit_luminance"},
    {u"coating", u"coating"},
    {u"coat_color", u"coat_color"},
    {u"coat_roughness", u"coat_roughness"},
    {u"coat_roughness_inv", u"coat_roughness_inv"},
    {u"coat_ior", u"coat_ior"},
    {u"sheen", u"sheen"},
    {u"sheen_color", u"sheen_color"},
    {u"sheen_roughness", u"sheen_roughness"},
    {u"thin_film", u"thin_film"},
    {u"thin_film_thickness", u"thin_film_thickness"},
    {u"thin_film_ior", u"thin_film_ior"},
    {u"material_mode", u"material_mode"},
};

// The standard material is read through its typed interface, not by parameter names.
void WriteStandardMaterial(RowRun& run) {
  const host::MtlBase& object = run.object;
  if (object.SuperClassID() != host::MATERIAL_CLASS_ID) return;
  // A material super class means a host material.
  host::StdMat2* standard = static_cast<const host::Mtl&>(object).GetStdMat2();
  if (standard == nullptr) return;
  host::TimeValue t = run.context.time;
  run.Append(u"diffuse_color", FormatJsonColor(standard->GetDiffuse(t)));
  run.Append(u"specular_color", FormatJsonColor(standard->GetSpecular(t)));
  run.Append(u"filter_color", FormatJsonColor(standard->GetFilter(t)));
  run.Append(u"glossiness", FormatJsonNumber(standard->GetShininess(t)));
  run.Append(u"specular_level", FormatJsonNumber(standard->GetShinStr(t)));
  run.Append(u"opacity", FormatJsonNumber(standard->GetOpacity(t)));
  run.Append(u"self_illum", FormatJsonNumber(standard->GetSelfIllum(t)));
  run.Append(u"ior", FormatJsonNumber(standard->GetIOR(t)));
  run.Append(u"two_sided", FormatJsonBool(standard->GetTwoSided()));
  run.Append(u"wire", FormatJsonBool(standard->GetWire()));
  AppendParamJson(run.fragments, &object, t, u"shaderByName", u"shader_name");
  std::u16string slots;
  for (int i = 0; i < object.NumSubTexmaps(); ++i) {
    if (object.GetSubTexmap(i) == nullptr) continue;
    if (!slots.empty()) slots += u',';
    slots += u"{\"name\":\"" + EscapeJsonString(object.GetSubTexmapSlotName(i, false)) +
             u"\",\"amount\":" + FormatJsonNumber(standard->GetTexmapAmt(i, t)) + u",\"enabled\":" +
             FormatJsonBool(standard->MapEnabled(i)) + u"}";
  }
  if (!slots.empty()) run.Append(u"map_slots", u"[" + slots + u"]");
}

const RowRule kStandardMaterial{
    [](RowRun& run, const ParamRow&) { WriteStandardMaterial(run); },
    u"standard-material values: diffuse_color, specular_color, filter_color, glossiness, "
    u"specular_level, opacity, self_illum, ior, two_sided, wire, then shader_name (from "
    u"\"shaderByName\") and map_slots: [{\"name\",\"amount\",\"enabled\"}] for filled slots"};

const ParamRow kStandardRows[] = {{u"", u"diffuse_color ... map_slots", &kStandardMaterial}};

}  // namespace

const WriterTable kCoronaMtlWriter{u"Corona material", kCoronaRows};
const WriterTable kVRayMtlWriter{u"V-Ray material", kVRayRows};
const WriterTable kPhysicalMtlWriter{u"Physical material", kPhysicalRows};
const WriterTable kStandardMtlWriter{u"Standard material", kStandardRows};

}  // namespace orvane
