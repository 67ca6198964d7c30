#include "package/displacement_record.h"

#include "graph/class_dispatch.h"
#include "graph/param_json.h"
#include "graph/param_lookup.h"
#include "host/object.h"

namespace orvane {

namespace {

constexpr ParamMapping kCoronaRows[] = {
    {u"maxDisplace", u"displacement_max"},       {u"amount", u"displacement_max"},
    {u"displacementMax", u"displacement_max"},   {u"minDisplace", u"displacement_min"},
    {u"displacementMin", u"displacement_min"},   {u"waterLevel", u"displacement_water_level"},
    {u"screenSize", u"displacement_screen_px"},  {u"pixelSize", u"displacement_screen_px"},
    {u"displacementType", u"displacement_type"}, {u"enabled", u"displacement_enabled"},
};

constexpr ParamMapping kVRayRows[] = {
    {u"amount", u"vray_disp_amount"},
    {u"shift", u"vray_disp_shift"},
    {u"relativeToBBox", u"vray_disp_relative_bbox"},
    {u"waterLevelOn", u"vray_disp_water_level_on"},
    {u"waterLevelValue", u"vray_disp_water_level"},
    {u"texmap_min", u"vray_disp_texmap_min"},
    {u"texmap_max", u"vray_disp_texmap_max"},
};

enum class Kind { kNone, kCorona, kVRay };

Kind Classify(const host::Modifier& modifier) {
  std::u16string name = LowerAscii(modifier.GetClassName());
  auto holds = [&](std::u16string_view part) { return name.find(part) != std::u16string::npos; };
  if (holds(u"coronadisplacement") || holds(u"corona_displacement")) return Kind::kCorona;
  if (holds(u"vraydisplacement") || holds(u"vray_displacement")) return Kind::kVRay;
  return Kind::kNone;
}

std::u16string Braced(const FragmentList& fragments) {
  std::u16string out = u"{";
  for (size_t i = 0; i < fragments.size(); ++i) {
    if (i > 0) out += u',';
    out += fragments[i];
  }
  return out + u"}";
}

}  // namespace

std::u16string BuildDisplacementRecord(const WriteContext& context, const host::INode* node) {
  if (node == nullptr) return u"null";
  for (host::Object* object = node->GetObjectRef(); object != nullptr;) {
    host::IDerivedObject* stack = object->AsDerivedObject();
    if (stack == nullptr || object->SuperClassID() != host::GEN_DERIVOB_CLASS_ID) break;
    for (int i = 0; i < stack->NumModifiers(); ++i) {
      const host::Modifier* modifier = stack->GetModifier(i);
      if (modifier == nullptr) continue;
      Kind kind = Classify(*modifier);
      if (kind == Kind::kNone) continue;
      FragmentList fragments;
      if (kind == Kind::kCorona) {
        AppendParamMappings(fragments, modifier, context.time, kCoronaRows);
        return fragments.empty() ? u"{\"displacement_found\":true}" : Braced(fragments);
      }
      fragments.push_back(u"\"vray_disp\":true");
      AppendParamMappings(fragments, modifier, context.time, kVRayRows);
      bool hasMap = FindParamReference(modifier, u"texmap", context.time) != nullptr;
      fragments.push_back(u"\"vray_disp_has_texmap\":" + FormatJsonBool(hasMap));
      return Braced(fragments);
    }
    object = stack->GetObjRef();
  }
  return u"null";
}

}  // namespace orvane
