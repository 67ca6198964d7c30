// The send's four scene-preparation scripts and what the send makes of their replies.
//
// The scripts run in the host's script engine as whole blocks. Those that answer do so with one
// string in a small protocol of prefixes ("BAKED:", "RESTORED:", "CONVERTED:", "ERROR:", "NONE").
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host/environment.h"
#include "host/interface.h"

namespace orvane {

// Opens every group, then collapses each geometry object's stack, resets its transform and
// collapses again. Changes the scene for good.
extern const std::u16string_view kGeometryBakeScript;
// Makes a mesh twin of every renderable spline under the spline's name and renames the spline
// out of the way; answers "BAKED:" + the number of twins.
extern const std::u16string_view kSplineCopiesScript;
// Deletes the twins and gives the splines their names back; answers "RESTORED:" + count.
extern const std::u16string_view kSplineRestoreScript;
// Converts the V-Ray materials of the scene with the renderer's own converter script; one line.
extern const std::u16string_view kVRayConvertScript;

// Runs a script quietly for its value: the string it answered, or empty text when the run
// failed or answered something that is not a string.
std::u16string RunScript(host::Interface& scene, std::u16string_view script);

// The number of twins made, or -1 when the reply is not "BAKED:" + a number.
int32_t RunSplineCopies(host::Interface& scene);
void RunSplineRestore(host::Interface& scene);
void RunGeometryBake(host::Interface& scene);

struct VRayCheckResult {
  bool attempted = false;
  bool succeeded = false;
  int32_t converted = 0;
  std::u16string error;
};

// Runs the V-Ray conversion only when the environment variable ORVANE_VRAY_CONVERT holds 1 to 7
// characters beginning with "1"; the conversion is off unless the user switches it on.
VRayCheckResult RunVRayCheck(host::Interface& scene, const host::EnvironmentLookup& environment);

}  // namespace orvane
