#include "package/cameras.h"

#include <cmath>

#include "base/wide_text.h"
#include "graph/json_text.h"
#include "graph/param_json.h"
#include "host/node.h"
#include "host/object.h"
#include "host/scene_walk.h"

namespace orvane {

namespace {

using host::Point3;

// Cameras of different renderers fill the same keys.
constexpr ParamMapping kPhysicalRows[] = {
    {u"film_width_mm", u"sensor_width"},
    {u"film_width", u"sensor_width"},
    {u"sensorWidth", u"sensor_width"},
    {u"focal_length_mm", u"focal_length"},
    {u"focal_length", u"focal_length"},
    {u"focalLength", u"focal_length"},
    {u"f_number", u"f_number"},
    {u"fStop", u"f_number"},
    {u"use_dof", u"dof_on"},
    {u"enableDof", u"dof_on"},
    {u"focus_distance", u"focus_distance"},
    {u"dofOverrideFocusDistance", u"focus_distance"},
    {u"specify_focus", u"focus_override"},
    {u"overrideFocusDistance", u"focus_override"},
    {u"zoom_factor", u"zoom"},
    {u"zoomFactor", u"zoom"},
    {u"autoVerticalTilt", u"auto_vertical_tilt"},
    {u"auto_vertical_tilt_correction", u"auto_vertical_tilt"},
    {u"lens_tilt_auto", u"auto_vertical_tilt"},
    {u"verticalTilt", u"vertical_tilt"},
    {u"vertical_tilt_correction", u"vertical_tilt"},
    {u"lens_tilt", u"vertical_tilt"},
    {u"horizontalTilt", u"horizontal_tilt"},
    {u"horizontal_tilt_correction", u"horizontal_tilt"},
    {u"lens_horTilt", u"horizontal_tilt"},
    {u"verticalShift", u"vertical_shift"},
    {u"vertical_shift", u"vertical_shift"},
    {u"horizontalShift", u"horizontal_shift"},
    {u"horizontal_shift", u"horizontal_shift"},
};

Point3 Normalized(Point3 p) {
  float length = std::sqrt(p.x * p.x + p.y * p.y + p.z * p.z);
  if (length == 0) return p;
  return {p.x / length, p.y / length, p.z / length};
}

// "[x, y, z]": the camera vectors are written with a blank after each comma.
std::u16string SpacedVector(const Point3& p) {
  std::u16string out = u"[";
  AppendJsonNumber(out, p.x);
  out += u", ";
  AppendJsonNumber(out, p.y);
  out += u", ";
  AppendJsonNumber(out, p.z);
  return out + u"]";
}

std::u16string CameraRecord(const WriteContext& context, host::INode& node, host::Object& object) {
  host::TimeValue t = context.time;
  host::Matrix3 tm = node.GetNodeTM(t);
  Point3 position = tm.GetTrans();
  Point3 back = tm.GetRow(2);
  Point3 direction = Normalized({-back.x, -back.y, -back.z});
  Point3 up = Normalized(tm.GetRow(1));
  host::INode* targetNode = node.GetTarget();
  Point3 target = targetNode != nullptr
                      ? targetNode->GetNodeTM(t).GetTrans()
                      : Point3{position.x + 100 * direction.x, position.y + 100 * direction.y,
                               position.z + 100 * direction.z};
  host::GenCamera* camera = object.AsCamera();
  float fov = camera != nullptr ? camera->GetFOV(t) : 0.0f;
  bool ortho = camera != nullptr && camera->IsOrtho();
  float targetDistance = camera != nullptr ? camera->GetTDist(t) : 0.0f;
  bool manualClip = camera != nullptr && camera->GetManualClip();

  std::u16string record =
      u"  {\n    \"camera_name\": \"" + EscapeJsonString(node.GetName()) +
      u"\",\n    \"camera_class\": \"" + EscapeJsonString(object.GetClassName()) +
      u"\",\n    \"position\": " + SpacedVector(position) + u",\n    \"target\": " +
      SpacedVector(target) + u",\n    \"direction\": " + SpacedVector(direction) +
      u",\n    \"up\": " + SpacedVector(up) + u",\n    \"fov_horizontal\": " +
      FormatJsonNumber(fov) + u",\n    \"has_target\": " + FormatJsonBool(targetNode != nullptr) +
      u",\n    \"ortho\": " + FormatJsonBool(ortho) + u",\n    \"basis\": [" +
      FormatJsonPoint3(tm.GetRow(0)) + u", " + FormatJsonPoint3(tm.GetRow(1)) + u", " +
      FormatJsonPoint3(tm.GetRow(2)) + u"]";
  FragmentList optional;
  if (targetDistance > 0)
    optional.push_back(MakeFragment(u"target_distance", FormatJsonNumber(targetDistance)));
  optional.push_back(MakeFragment(u"clip_on", FormatJsonBool(manualClip)));
  if (manualClip) {
    optional.push_back(MakeFragment(
        u"clip_near", FormatJsonNumber(camera->GetClipDist(t, host::GenCamera::kNearClip))));
    optional.push_back(MakeFragment(
        u"clip_far", FormatJsonNumber(camera->GetClipDist(t, host::GenCamera::kFarClip))));
  }
  if (ortho && targetDistance > 0) {
    float width = 2 * targetDistance * std::tan(fov * 0.5f);
    optional.push_back(MakeFragment(u"ortho_width", FormatJsonNumber(width)));
  }
  AppendParamMappings(optional, &object, t, kPhysicalRows);
  for (const std::u16string& fragment : optional)
    record += u",\n    " + fragment;
  return record + u"\n  }";
}

}  // namespace

std::u16string CollectCamerasJson(const WriteContext& context, std::vector<std::u16string>& log) {
  std::vector<std::u16string> records;
  for (host::INode* node : ListSceneNodes(context.scene)) {
    host::Object* object = node->EvalWorldState(context.time);
    if (object == nullptr || object->SuperClassID() != host::CAMERA_CLASS_ID) continue;
    records.push_back(CameraRecord(context, *node, *object));
    log.push_back(u"  camera exported: " + node->GetName());
  }
  log.push_back(u"Cameras exported: " + AsciiToWide(std::to_string(records.size())));
  if (records.empty()) return {};
  std::u16string section = u",\n  \"cameras\": [\n";
  for (size_t i = 0; i < records.size(); ++i) {
    section += records[i];
    section += i + 1 < records.size() ? u",\n" : u"\n";
  }
  return section + u"  ]";
}

}  // namespace orvane
