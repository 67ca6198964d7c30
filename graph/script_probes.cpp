#include "graph/script_probes.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "base/wide_text.h"
#include "graph/param_json.h"

namespace orvane {

namespace {

constexpr ProbeSearch kOutputSearch{u"OV_findTexmapByNameOut", u"OV_findMapForOutput", true};
constexpr ProbeSearch kGradientSearch{u"OV_findTexmapByName", u"OV_findGradientRamp", true};
constexpr ProbeSearch kPropertySearch{u"OV_findTexByNameP", u"OV_findMapP", false};

// Only the double quote and the backslash are escaped in a script string.
std::u16string ScriptString(std::u16string_view text) {
  std::u16string out = u"\"";
  for (char16_t c : text) {
    if (c == u'"' || c == u'\\') out += u'\\';
    out += c;
  }
  return out + u"\"";
}

std::u16string Descend(std::u16string_view finder, std::u16string_view count,
                       std::u16string_view get) {
  return u"(local n = 0; try ( n = " + std::u16string(count) +
         u" root ) catch(); for i = 1 to n do "
         u"( local r = " +
         std::u16string(finder) + u" (" + std::u16string(get) +
         u" root i) targetName visited; if r != undefined do return r ));";
}

std::u16string SearchFunctions(const ProbeSearch& search) {
  std::u16string finder(search.finder), driver(search.driver);
  std::u16string subMaterials = Descend(finder, u"getNumSubMtls", u"getSubMtl");
  std::u16string subMaps = Descend(finder, u"getNumSubTexmaps", u"getSubTexmap");
  std::u16string descend =
      search.materialsOnlyByClass
          ? u"if (isKindOf root material) or ((superClassOf root) == material) do (" +
                subMaterials + subMaps + u"); if (superClassOf root) == textureMap do (" + subMaps +
                u");"
          : subMaterials + subMaps;
  return u"fn " + finder +
         u" root targetName visited = (if root == undefined or "
         u"(finditem visited root) > 0 do return undefined; append visited root; local nm = \"\"; "
         u"try ( nm = root.name ) catch(); if (superClassOf root) == textureMap and nm == "
         u"targetName do return root; " +
         descend + u" undefined);fn " + driver +
         u" targetName = (local visited = #(); for o in objects where o.material != undefined do "
         u"( local r = " +
         finder +
         u" o.material targetName visited; if r != undefined do return "
         u"r ); for m in sceneMaterials do ( local r = " +
         finder +
         u" m targetName visited; if r "
         u"!= undefined do return r ); undefined);";
}

// Runs a probe script; nullopt unless the host answers a non-empty string that is no error.
std::optional<std::u16string> RunProbeScript(const WriteContext& context,
                                             const std::u16string& script) {
  host::ScriptResult result = context.scene.ExecuteMAXScriptScript(script, true, true);
  if (!result.succeeded || !result.stringValue || result.stringValue->empty()) return std::nullopt;
  if (result.stringValue->rfind(u"ERROR:", 0) == 0) return std::nullopt;
  return result.stringValue;
}

std::optional<std::u16string> RunQuery(const WriteContext& context, const host::MtlBase& map,
                                       std::u16string_view variable, const ProbeSearch& search,
                                       std::u16string_view query) {
  if (map.SuperClassID() != host::TEXMAP_CLASS_ID) return std::nullopt;
  std::optional<std::u16string> locator = LocateMap(map, variable, search);
  if (!locator) return std::nullopt;
  return RunProbeScript(context, u"(" + *locator + std::u16string(query));
}

std::u16string FloatArray(const std::vector<float>& values) {
  std::u16string out = u"[";
  for (size_t i = 0; i < values.size(); ++i) {
    if (i > 0) out += u',';
    AppendJsonNumber(out, values[i]);
  }
  return out + u"]";
}

const std::u16string_view kOutputQuery =
    u"if mp == undefined then (\"ERROR:NOTFOUND\") else (local o = undefined; try ( o = mp.output "
    u") catch(); if o == undefined then (\"ERROR:NOOUTPUT\") else (local inv = false; try ( inv = "
    u"o.invert ) catch(); local cl = false; try ( cl = o.clamp ) catch(); local af = false; try ( "
    u"af = o.alphaFromRGB ) catch(); local cm = false; try ( cm = o.enableColorMap ) catch(); "
    u"local rgbm = false; try ( rgbm = o.useRGBColorMap ) catch(); local ofs = 0.0; try ( ofs = "
    u"o.rgb_offset ) catch(); local lvl = 1.0; try ( lvl = o.RGB_Level ) catch(); local amt = "
    u"1.0; try ( amt = o.output_amount ) catch(); local bmp = 1.0; try ( bmp = o.Bump_Amount ) "
    u"catch(); ((if inv == true then \"1\" else \"0\") + \",\" + (if cl == true then \"1\" else "
    u"\"0\") + \",\" + (if af == true then \"1\" else \"0\") + \",\" + (if cm == true then \"1\" "
    u"else \"0\") + \",\" + (if rgbm == true then \"1\" else \"0\") + \",\" + (ofs as string) + "
    u"\",\" + (lvl as string) + \",\" + (amt as string) + \",\" + (bmp as string))))";

const std::u16string_view kGradientQuery =
    u"if gr == undefined then (\"ERROR:NOTFOUND\") else (local best = undefined; local bestCount = "
    u"0; for i = 1 to gr.numsubs do (local s = getSubAnim gr i; local c = 0; try ( for j = 1 to "
    u"s.numsubs do ( try ( if (getSubAnim s j).color != undefined do c += 1 ) catch() ) ) "
    u"catch(); if c > bestCount do ( best = s; bestCount = c )); if best == undefined then "
    u"(\"ERROR:NOCONTAINER\") else (local acc = \"\"; local firstMissing = true; for j = 1 to "
    u"best.numsubs do (local k = getSubAnim best j; local col = undefined; try ( col = k.color ) "
    u"catch(); if col != undefined do (local p = undefined; try ( p = k.position ) catch(); if p "
    u"== undefined do ( p = if firstMissing then 0.0 else 100.0; firstMissing = false ); if acc "
    u"!= \"\" do acc += \"|\"; acc += (p as string) + \",\" + (col.x as string) + \",\" + (col.y "
    u"as string) + \",\" + (col.z as string))); acc))";

struct OutputFields {
  bool invert, clamp, alphaFromRgb, colorMap, rgbColorMap;
  float offset, level, amount, bump;
};

void AppendCurves(FragmentList& fragments, const WriteContext& context, const host::MtlBase& map,
                  bool rgb) {
  const auto& texmap = static_cast<const host::Texmap&>(map);
  if (!rgb) {
    if (auto curve = ReadCurve(texmap.GetColorMapCurveCtl(false), 0, context.time)) {
      fragments.push_back(MakeFragment(u"color_map_curve", FloatArray(*curve)));
    }
    return;
  }
  const host::ICurveCtl* control = texmap.GetColorMapCurveCtl(true);
  std::u16string curves = u"[";
  bool any = false;
  for (int c = 0; c < 3; ++c) {
    std::optional<std::vector<float>> curve = ReadCurve(control, c, context.time);
    any = any || curve.has_value();
    if (c > 0) curves += u',';
    curves += curve ? FloatArray(*curve) : u"[]";
  }
  if (any) fragments.push_back(MakeFragment(u"color_map_curve_rgb", curves + u"]"));
}

}  // namespace

std::vector<std::u16string_view> SplitText(std::u16string_view text, char16_t separator) {
  std::vector<std::u16string_view> fields;
  size_t start = 0;
  for (size_t at = text.find(separator); at != std::u16string_view::npos;
       at = text.find(separator, start)) {
    fields.push_back(text.substr(start, at - start));
    start = at + 1;
  }
  fields.push_back(text.substr(start));
  return fields;
}

std::optional<float> ParseScriptFloat(std::u16string_view text) {
  std::string ascii;
  for (char16_t c : text.substr(0, 64)) {
    if (c > 0x7F) break;
    ascii += static_cast<char>(c);
  }
  float value = 0;
  auto [end, error] = std::from_chars(ascii.data(), ascii.data() + ascii.size(), value);
  if (error != std::errc() || end == ascii.data()) return std::nullopt;
  return value;
}

std::optional<std::u16string> LocateMap(const host::MtlBase& map, std::u16string_view variable,
                                        const ProbeSearch& search) {
  // The handle is tried first: it spares the scene-wide search.
  if (host::AnimHandle handle = map.GetHandle(); handle != 0) {
    return u"local " + std::u16string(variable) + u" = getAnimByHandle " + Decimal(handle) + u";";
  }
  std::u16string name = map.GetName();
  if (name.empty()) return std::nullopt;
  return SearchFunctions(search) + u"local " + std::u16string(variable) + u" = " +
         std::u16string(search.driver) + u" " + ScriptString(name) + u";";
}

std::optional<std::vector<float>> ReadCurve(const host::ICurveCtl* control, int index,
                                            host::TimeValue t) {
  if (control == nullptr || control->GetNumCurves() <= index) return std::nullopt;
  const host::ICurve* curve = control->GetControlCurve(index);
  if (curve == nullptr) return std::nullopt;
  std::vector<float> samples;
  bool identity = true;
  for (int i = 0; i < host::kCurveSampleCount; ++i) {
    float x = host::CurveSampleX(i);
    float y = curve->GetValue(t, x);
    samples.push_back(y);
    identity = identity && std::fabs(y - x) <= 0.001953125f;
  }
  if (identity) return std::nullopt;
  return samples;
}

void AppendOutputProbe(FragmentList& fragments, const WriteContext& context,
                       const host::MtlBase& map) {
  std::optional<std::u16string> reply = RunQuery(context, map, u"mp", kOutputSearch, kOutputQuery);
  if (!reply) return;
  std::vector<std::u16string_view> fields = SplitText(*reply, u',');
  if (fields.size() != 9) return;
  auto flag = [&](int i) { return fields[static_cast<size_t>(i)] == u"1"; };
  auto number = [&](int i) {
    return ParseScriptFloat(fields[static_cast<size_t>(i)]).value_or(0.0f);
  };
  OutputFields output{flag(0),   flag(1),   flag(2),   flag(3),  flag(4),
                      number(5), number(6), number(7), number(8)};
  fragments.push_back(MakeFragment(u"invert", FormatJsonBool(output.invert)));
  fragments.push_back(MakeFragment(u"clamp", FormatJsonBool(output.clamp)));
  fragments.push_back(MakeFragment(u"alpha_from_rgb", FormatJsonBool(output.alphaFromRgb)));
  fragments.push_back(MakeFragment(u"output_enable_color_map", FormatJsonBool(output.colorMap)));
  fragments.push_back(MakeFragment(u"output_rgb_color_map", FormatJsonBool(output.rgbColorMap)));
  fragments.push_back(MakeFragment(u"rgb_offset", FormatJsonNumber(output.offset)));
  fragments.push_back(MakeFragment(u"rgb_level", FormatJsonNumber(output.level)));
  fragments.push_back(MakeFragment(u"output_amount", FormatJsonNumber(output.amount)));
  fragments.push_back(MakeFragment(u"output_bump_amount", FormatJsonNumber(output.bump)));
  if (output.colorMap) AppendCurves(fragments, context, map, output.rgbColorMap);
}

void AppendGradientProbe(FragmentList& fragments, const WriteContext& context,
                         const host::MtlBase& map) {
  static constexpr ParamMapping kRows[] = {{u"Gradient_Type", u"gradient_type"},
                                           {u"gradientType", u"gradient_type"},
                                           {u"Noise_Type", u"noise_type"},
                                           {u"amount", u"noise_amount"},
                                           {u"size", u"noise_size"},
                                           {u"phase", u"noise_phase"},
                                           {u"levels", u"noise_levels"}};
  for (auto [host, key] : kRows)
    AppendParamJson(fragments, &map, context.time, host, key);

  std::optional<std::u16string> reply =
      RunQuery(context, map, u"gr", kGradientSearch, kGradientQuery);
  if (!reply) return;
  struct Key {
    float position;
    host::Color color;
  };
  std::vector<Key> keys;
  for (std::u16string_view entry : SplitText(*reply, u'|')) {
    std::vector<std::u16string_view> numbers = SplitText(entry, u',');
    if (numbers.size() != 4) continue;
    std::optional<float> values[4];
    for (size_t i = 0; i < 4; ++i)
      values[i] = ParseScriptFloat(numbers[i]);
    if (!values[0] || !values[1] || !values[2] || !values[3]) continue;
    keys.push_back(
        {*values[0] / 100.0f, {*values[1] / 255.0f, *values[2] / 255.0f, *values[3] / 255.0f}});
  }
  if (keys.empty()) return;
  std::stable_sort(keys.begin(), keys.end(),
                   [](const Key& a, const Key& b) { return a.position < b.position; });
  std::u16string list = u"[";
  for (size_t i = 0; i < keys.size(); ++i) {
    if (i > 0) list += u',';
    list += u"{\"pos\":" + FormatJsonNumber(keys[i].position) + u",\"color\":" +
            FormatJsonColor(keys[i].color) + u"}";
  }
  fragments.push_back(MakeFragment(u"keys", list + u"]"));
}

std::vector<std::u16string> ProbeProperties(const WriteContext& context, const host::MtlBase& map,
                                            const std::vector<std::u16string>& properties) {
  if (properties.empty()) return {};
  std::u16string query =
      u"if mp == undefined then (\"ERROR:NOTFOUND\") else (    local acc = \"\";";
  for (size_t i = 0; i < properties.size(); ++i) {
    std::u16string v = u"v" + Decimal(i);
    query += u"    local " + v + u" = undefined;";
    query += u"    try ( " + v + u" = mp." + properties[i] + u" ) catch();";
    query += u"    acc += (if " + v + u" == undefined then \"\" else (" + v + u" as string));";
    query += u"    acc += \",\";";
  }
  query += u"    acc))";
  std::optional<std::u16string> reply = RunQuery(context, map, u"mp", kPropertySearch, query);
  if (!reply) return {};
  std::vector<std::u16string> values;
  for (std::u16string_view field : SplitText(*reply, u','))
    values.emplace_back(field);
  return values;
}

}  // namespace orvane
