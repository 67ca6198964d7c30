#include "graph/class_dispatch.h"

#include <algorithm>
#include <array>
#include <map>
#include <vector>

#include "base/wide_text.h"

#include "graph/bitmap_writers.h"
#include "graph/material_writers.h"
#include "graph/param_lookup.h"
#include "graph/texmap_writers.h"

namespace orvane {

namespace {

enum class Match { kExact, kContains };

struct DispatchRow {
  Match match;
  std::array<std::u16string_view, 8> names;
  const WriterTable* writer;
};

constexpr Match E = Match::kExact;
constexpr Match C = Match::kContains;

// Searched top to bottom; the order decides between rows that could both match (an exact name
// always wins over the containment rows below it, and "ao" catches whatever holds those letters).
const DispatchRow kDispatch[] = {
    {E, {u"coronabitmap"}, &kCoronaBitmapWriter},
    {E, {u"coronamtl"}, &kCoronaMtlWriter},
    {E, {u"coronalayeredmtl"}, &kCoronaLayeredMtlWriter},
    {E, {u"coronamixtex"}, &kCoronaMixWriter},
    {E, {u"coronablendmtl"}, &kCoronaBlendMtlWriter},
    {E, {u"coronanormal", u"coronanormaltex"}, &kCoronaNormalWriter},
    {E, {u"coronabumptex"}, &kCoronaBumpWriter},
    {E, {u"coronacolortex", u"coronacolor"}, &kCoronaColorWriter},
    {E, {u"coronalightmtl"}, &kCoronaLightMtlWriter},
    {E, {u"coronaskinmtl"}, &kCoronaSkinMtlWriter},
    {E, {u"coronarayswitchmtl"}, &kCoronaRaySwitchWriter},
    {E, {u"coronaaotexmap"}, &kCoronaAoWriter},
    {E, {u"coronacurvature"}, &kCoronaCurvatureWriter},
    {E, {u"coronamappingrandomizer", u"corona mapping randomizer"}, &kUvwRandomizerWriter},
    {E, {u"vraymtl"}, &kVRayMtlWriter},
    {E, {u"vrayhdri", u"vraybitmap"}, &kVRayBitmapWriter},
    {E, {u"vraynormalmap"}, &kVRayNormalWriter},
    {E, {u"normal bump", u"normal_bump"}, &kNormalBumpWriter},
    {E, {u"vraycolor"}, &kVRayColorWriter},
    {E, {u"vraydirt"}, &kVRayDirtWriter},
    {E, {u"vray2sidedmtl"}, &kVRay2SidedWriter},
    {E, {u"vraylightmtl"}, &kVRayLightMtlWriter},
    {E, {u"vrayblendmtl"}, &kVRayBlendMtlWriter},
    {E, {u"vraycarpaintmtl"}, &kVRayCarPaintWriter},
    {E, {u"vrayfastsss2"}, &kVRayFastSssWriter},
    {E, {u"vraymultisubtex"}, &kVRayMultiSubWriter},
    {E, {u"vraycomptex"}, &kVRayCompTexWriter},
    {E, {u"vrayedgestex"}, &kVRayEdgesWriter},
    {E, {u"vraystochasticflakesmtl"}, &kVRayFlakesWriter},
    {E, {u"vrayalsurfacemtl", u"vray alsurface mtl"}, &kVRayAlSurfaceWriter},
    {E, {u"coronafrontback"}, &kCoronaFrontBackWriter},
    {E, {u"falloff"}, &kFalloffWriter},
    {E, {u"mix"}, &kCoronaMixWriter},  // the host's Mix map: the Corona mix rows cover its names
    {E, {u"noise"}, &kNoiseWriter},
    {E, {u"output"}, &kOutputWriter},
    {E, {u"gradient"}, &kGradientWriter},
    {E, {u"gradient_ramp", u"gradientramp", u"gradient ramp"}, &kGradientRampWriter},
    {E, {u"bitmaptexture", u"bitmap"}, &kBitmapWriter},
    {E, {u"color_correction", u"color correction"}, &kColorCorrectionWriter},
    {E, {u"cellular"}, &kCellularWriter},
    {E, {u"rgb_multiply", u"rgb multiply"}, &kRgbMultiplyWriter},
    {E, {u"color_map"}, &kColorMapWriter},
    {E, {u"blend"}, &kMixWriter},
    {E, {u"multitexture"}, &kMultiTextureWriter},
    {E, {u"checker"}, &kCheckerWriter},
    {E, {u"mask"}, &kMaskWriter},
    {E, {u"rgb tint", u"rgb_tint"}, &kRgbTintWriter},
    {E, {u"color map", u"colormap"}, &kColorMapWriter},
    {E, {u"coronawire", u"corona wire"}, &kCoronaWireWriter},
    {E, {u"coronatilemap", u"corona tilemap", u"corona tile map"}, &kCoronaTileWriter},
    {C,
     {u"forest color", u"forest_color", u"railclone color", u"railclone_color"},
     &kScatterColorWriter},
    {E,
     {u"splat", u"speckle", u"smoke", u"dent", u"marble", u"perlin marble", u"perlin_marble",
      u"stucco"},
     &kTwoColorWriter},
    {E, {u"shellac"}, &kShellacWriter},
    {E, {u"shell_material", u"shell material"}, &kShellMtlWriter},
    {E, {u"material_switcher", u"material switcher"}, &kMaterialSwitcherWriter},
    {E, {u"xref", u"xref_material", u"xref material"}, &kXRefWriter},
    {E, {u"material_output_selector", u"material output selector"}, &kOutputSelectorWriter},
    {E, {u"map_to_material_conversion", u"map to material conversion"}, &kMapToMaterialWriter},
    {E, {u"morpher", u"morphermaterial", u"morpher material"}, &kMorpherWriter},
    {E, {u"doublesided", u"double sided"}, &kDoubleSidedWriter},
    {E, {u"topbottom", u"top/bottom", u"top bottom"}, &kTopBottomWriter},
    // Exact "composite" is the material writer whether the object is a map or a material.
    {E, {u"compositematerial", u"composite material", u"composite"}, &kCompositeMtlWriter},
    {E, {u"coronaselectmtl", u"corona select mtl"}, &kCoronaSelectMtlWriter},
    {E, {u"coronaselect", u"corona select"}, &kCoronaSelectMapWriter},
    {E, {u"coronatonemapcontrol", u"corona tonemap control"}, &kCoronaToneMapControlWriter},
    {E, {u"coronabumpconverter", u"corona bump converter"}, &kCoronaBumpConverterWriter},
    {E,
     {u"standard (legacy)", u"standard", u"standardmaterial", u"standard material"},
     &kStandardMtlWriter},
    {E, {u"physical material", u"physicalmaterial"}, &kPhysicalMtlWriter},
    {C, {u"pbr"}, &kPbrWriter},
    {C, {u"gltf"}, &kGltfWriter},
    {C, {u"legacy", u"physical"}, &kCoronaMtlWriter},
    {C, {u"lightmtl"}, &kCoronaLightMtlWriter},
    {C, {u"skinmtl"}, &kCoronaSkinMtlWriter},
    {C, {u"ao"}, &kCoronaAoWriter},
    {C, {u"composite"}, &kCompositeMapWriter},
    {C, {u"coronacolorcorrect"}, &kCoronaColorCorrectWriter},
    {C, {u"coronamix"}, &kCoronaMixWriter},
    {C, {u"coronacolor"}, &kCoronaColorWriter},
    {C, {u"rgb_multiply", u"rgb multiply"}, &kRgbMultiplyWriter},
    {C, {u"color_map"}, &kColorMapWriter},
    {C, {u"multimap"}, &kCoronaMultimapWriter},
    {C, {u"roundedge"}, &kCoronaRoundEdgeWriter},
    {C, {u"triplanar"}, &kCoronaTriplanarWriter},
};
static_assert(std::size(kDispatch) == 83);

struct FixedTypeName {
  std::u16string_view className;
  std::u16string_view typeName;
};

const FixedTypeName kFixedTypeNames[] = {
    {u"bitmap", u"Bitmaptexture"},
    {u"falloff", u"falloff"},
    {u"composite", u""},  // depends on whether the object is a material
    {u"color correction", u"Color_Correction"},
    {u"rgb multiply", u"RGB_Multiply"},
    {u"standard (legacy)", u"Standardmaterial"},
    {u"shell material", u"Shell_Material"},
    {u"material switcher", u"Material_Switcher"},
    {u"xref material", u"XRef_Material"},
    {u"material output selector", u"Material_Output_Selector"},
    {u"map to material conversion", u"Map_to_Material_Conversion"},
    {u"double sided", u"DoubleSided"},
    {u"top/bottom", u"TopBottom"},
    {u"top bottom", u"TopBottom"},
    {u"output", u"output"},
};

bool IsAsciiAlnum(char16_t c) {
  return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9');
}

bool Matches(const DispatchRow& row, std::u16string_view lowered) {
  for (std::u16string_view name : row.names) {
    if (name.empty()) break;
    bool hit = row.match == Match::kExact ? lowered == name
                                          : lowered.find(name) != std::u16string_view::npos;
    if (hit) return true;
  }
  return false;
}

}  // namespace

std::u16string_view StripLeadingNonAlnum(std::u16string_view className) {
  size_t start = 0;
  while (start < className.size() && !IsAsciiAlnum(className[start]))
    ++start;
  return className.substr(start);
}

std::u16string NormalizeClassTypeName(std::u16string_view className, bool isMaterial) {
  std::u16string_view stripped = StripLeadingNonAlnum(className);
  std::u16string lowered = LowerAscii(stripped);
  for (const FixedTypeName& fixed : kFixedTypeNames) {
    if (lowered != fixed.className) continue;
    if (fixed.className == u"composite") {
      return isMaterial ? u"compositematerial" : u"CompositeTexturemap";
    }
    return std::u16string(fixed.typeName);
  }
  return std::u16string(stripped);
}

const WriterTable* FindWriterForClass(std::u16string_view className) {
  std::u16string lowered = LowerAscii(className);
  for (const DispatchRow& row : kDispatch) {
    if (Matches(row, lowered)) return row.writer;
  }
  return nullptr;
}

FragmentList WriteParamsForClass(const WriteContext& context, const host::MtlBase& object) {
  const WriterTable* writer = FindWriterForClass(object.GetClassName());
  return writer != nullptr ? RunWriter(*writer, context, object) : FragmentList();
}

std::vector<const WriterTable*> AllWriters() {
  std::vector<const WriterTable*> writers;
  for (const DispatchRow& row : kDispatch) {
    if (std::find(writers.begin(), writers.end(), row.writer) == writers.end()) {
      writers.push_back(row.writer);
    }
  }
  return writers;
}

std::string FormatWriterReference() {
  // With every class name that reaches each writer.
  std::map<const WriterTable*, std::string> classes;
  for (const DispatchRow& row : kDispatch) {
    std::string& list = classes[row.writer];
    for (std::u16string_view name : row.names) {
      if (name.empty()) break;
      if (!list.empty()) list += ", ";
      list += (row.match == Match::kExact ? "`" : "holds `") + ToUtf8(name) + "`";
    }
  }
  std::string out;
  for (const WriterTable* writer : AllWriters()) {
    out += "### " + ToUtf8(writer->name) + "\n\nClasses (lower-cased): " + classes[writer] +
           "\n\n| Host parameter | Key | Rule |\n|---|---|---|\n";
    for (const ParamRow& row : writer->rows) {
      std::string host = row.hostName.empty() ? "" : "`" + ToUtf8(row.hostName) + "`";
      std::string rule = row.rule != nullptr ? ToUtf8(row.rule->name) : "as stored";
      std::string key = row.jsonKey.empty() ? "—" : "`" + ToUtf8(row.jsonKey) + "`";
      out += "| " + host + " | " + key + " | " + rule + " |\n";
    }
    out += "\n";
  }
  return out;
}

}  // namespace orvane
