#include "pipeline/scene_scripts.h"

#include "base/leading_int.h"

namespace orvane {

const std::u16string_view kGeometryBakeScript =
    uR"ms((
  -- Open groups level by level. A group that will not open leaves "more" set, so the guard,
  -- not the group, ends the loop.
  local more = true
  local guard = 0
  while more and guard < 50 do
  (
    more = false
    guard += 1
    local heads = for o in objects where (isGroupHead o) collect o
    for g in heads do
    (
      try (ungroup g; more = true) catch ()
    )
  )
  -- The geometry as it is before anything changes.
  local geometry = for o in objects where (superClassOf o) == GeometryClass collect o
  try (disableSceneRedraw()) catch ()
  try (suspendEditing()) catch ()
  undo off
  (
    for o in geometry do
    (
      -- Collapse first: a transform reset on a live stack breaks mirrored objects and deforming
      -- modifiers. The second collapse bakes the XForm modifier that the reset adds.
      try (convertToPoly o) catch ()
      try (resetXForm o) catch ()
      try (convertToPoly o) catch ()
    )
  )
  try (resumeEditing()) catch ()
  try (enableSceneRedraw()) catch ()
  try (clearSelection()) catch ()
  try (redrawViews()) catch ()
))ms";

const std::u16string_view kSplineCopiesScript =
    uR"ms((
  ::OVSplineCopies = #()
  ::OVSplineSources = #()
  ::OVSplineNames = #()
  -- A spline already renamed has its twin; a second pass must not double the suffix. The list
  -- is taken before any copy is made, so the twins are not walked themselves.
  local splines = for o in objects where (superClassOf o) == shape collect o
  for o in splines where not (matchPattern o.name pattern:"*_ovSplineSrc") do
  (
    local renderInRenderer = true
    try (renderInRenderer = o.render_renderable) catch (renderInRenderer = true)
    if renderInRenderer == true and o.renderable == true do
    (
      local c = undefined
      try (c = copy o) catch (c = undefined)
      if c != undefined do
      (
        local converted = false
        try (convertToMesh c; converted = true) catch ()
        local faceCount = 0
        try (faceCount = getNumFaces c) catch (faceCount = 0)
        if converted and faceCount > 0 then
        (
          local nm = o.name
          append ::OVSplineSources o
          append ::OVSplineNames nm
          try (c.parent = o.parent) catch ()
          try (c.wirecolor = o.wirecolor) catch ()
          -- The twin takes the spline's name, so the FBX file carries it as the user named it.
          o.name = nm + "_ovSplineSrc"
          c.name = nm
          append ::OVSplineCopies c
        )
        else
        (
          try (delete c) catch ()
        )
      )
    )
  )
  ("BAKED:" + (::OVSplineCopies.count as string))
))ms";

const std::u16string_view kSplineRestoreScript =
    uR"ms((
  local restored = 0
  try
  (
    for c in ::OVSplineCopies do (try (delete c) catch ())
    for i = 1 to ::OVSplineSources.count do
    (
      try (::OVSplineSources[i].name = ::OVSplineNames[i]) catch ()
    )
    restored = ::OVSplineCopies.count
  )
  catch ()
  -- Cleared even after a failure, so a later send starts from nothing.
  ::OVSplineCopies = #()
  ::OVSplineSources = #()
  ::OVSplineNames = #()
  ("RESTORED:" + (restored as string))
))ms";

// One line: the pieces below are joined without line breaks.
const std::u16string_view kVRayConvertScript =
    // The functions call themselves, so their names are declared before they are defined.
    uR"ms(( local OV_isVRayClassName, OV_materialUsesVRayRecursive, OV_scanForConverter, OV_findConverterScript; )ms"
    uR"ms(fn OV_isVRayClassName cn = ( local lcn = toLower cn; (lcn.count >= 4) and (substring lcn 1 4 == "vray") ); )ms"
    // Depth first through sub-materials; each material is looked at once.
    uR"ms(fn OV_materialUsesVRayRecursive mtl visited = ( if mtl == undefined or (findItem visited mtl) > 0 then false else ( )ms"
    uR"ms(append visited mtl; if OV_isVRayClassName ((classOf mtl) as string) then true else ( local found = false; local n = 0; )ms"
    uR"ms(try (n = getNumSubMtls mtl) catch (n = 0); for i = 1 to n while not found do ( local s = undefined; )ms"
    uR"ms(try (s = getSubMtl mtl i) catch (s = undefined); if OV_materialUsesVRayRecursive s visited do found = true ); found ) ) ); )ms"
    // The converter lies somewhere below the renderer's install folder, at most four levels down.
    uR"ms(fn OV_scanForConverter dir depth verStr = ( if depth > 4 then undefined else ( )ms"
    uR"ms(local candidate = dir + "\\Scripts\\coronaConverter.ms"; if doesFileExist candidate then candidate else ( )ms"
    uR"ms(local found = undefined; for sub in (getDirectories (dir + "\\*")) while found == undefined do ( )ms"
    uR"ms(found = OV_scanForConverter (trimRight sub "\\") (depth + 1) verStr ); found ) ) ); )ms"
    // The user's own path first, then the three install layouts, then a search.
    uR"ms(fn OV_findConverterScript = ( local verStr = ((maxVersion())[8]) as string; )ms"
    uR"ms(local envPath = systemTools.getEnvVariable "ORVANE_CORONA_CONVERTER"; )ms"
    uR"ms(if envPath != undefined and envPath != "" and (doesFileExist envPath) then envPath else ( local found = undefined; )ms"
    uR"ms(local candidates = #("C:\\Program Files\\Corona\\Corona Renderer for 3ds Max\\" + verStr + "\\Scripts\\coronaConverter.ms", )ms"
    uR"ms("C:\\Program Files\\Chaos\\Corona for 3ds Max\\" + verStr + "\\Scripts\\coronaConverter.ms", )ms"
    uR"ms("C:\\Program Files\\Chaos\\Corona\\Corona Renderer for 3ds Max\\" + verStr + "\\Scripts\\coronaConverter.ms"); )ms"
    uR"ms(for p in candidates while found == undefined do ( if doesFileExist p do found = p ); )ms"
    uR"ms(if found == undefined do found = OV_scanForConverter "C:\\Program Files\\Chaos" 1 verStr; )ms"
    uR"ms(if found == undefined do found = OV_scanForConverter "C:\\Program Files\\Corona" 1 verStr; found ) ); )ms"
    uR"ms(local nodesWithVRay = for o in objects where o.material != undefined and (OV_materialUsesVRayRecursive o.material #()) collect o; )ms"
    uR"ms(if nodesWithVRay.count == 0 then "NONE" else ( local err = undefined; local scriptPath = OV_findConverterScript(); )ms"
    uR"ms(if scriptPath == undefined then err = "coronaConverter.ms not found on typical install paths" else ( )ms"
    // The converter must not open its dialog; its two globals exist before it is loaded.
    uR"ms(try ( ::CoronaConverterSuppressGui = true; ::CoronaProxyConverter; ::CoronaConverter; fileIn scriptPath ) )ms"
    uR"ms(catch ( err = "fileIn failed: " + ((getCurrentException()) as string) ); )ms"
    uR"ms(if err == undefined and CoronaConverter == undefined do err = "CoronaConverter undefined after fileIn"; )ms"
    uR"ms(if err == undefined do ( try ( CoronaConverter.converterSettings.silent = true; CoronaConverter.converterSettings.printInfo = false; )ms"
    uR"ms(CoronaConverter.convertNodeArray nodesWithVRay; ::CoronaConverterSuppressGui = false ) )ms"
    uR"ms(catch ( err = "convertNodeArray failed: " + ((getCurrentException()) as string); try (::CoronaConverterSuppressGui = false) catch () ) ) ); )ms"
    uR"ms(if err == undefined then ("CONVERTED:" + (nodesWithVRay.count as string)) else ("ERROR:" + err) ) ))ms";

namespace {

// The prefix's number, or nullopt when the reply does not start with the prefix.
std::optional<int32_t> CountAfter(std::u16string_view reply, std::u16string_view prefix) {
  if (!reply.starts_with(prefix)) return std::nullopt;
  return ParseLeadingInt(reply.substr(prefix.size()));
}

}  // namespace

std::u16string RunScript(host::Interface& scene, std::u16string_view script) {
  host::ScriptResult result = scene.ExecuteMAXScriptScript(script, true, true);
  return result.succeeded && result.stringValue ? *result.stringValue : std::u16string();
}

int32_t RunSplineCopies(host::Interface& scene) {
  return CountAfter(RunScript(scene, kSplineCopiesScript), u"BAKED:").value_or(-1);
}

void RunSplineRestore(host::Interface& scene) {
  RunScript(scene, kSplineRestoreScript);
}

void RunGeometryBake(host::Interface& scene) {
  // Errors are not kept quiet here: the user asked for the bake and should see what failed.
  scene.ExecuteMAXScriptScript(kGeometryBakeScript, false, false);
}

VRayCheckResult RunVRayCheck(host::Interface& scene, const host::EnvironmentLookup& environment) {
  VRayCheckResult result;
  std::optional<std::u16string> switchedOn = environment(u"ORVANE_VRAY_CONVERT");
  // The kernel call reads at most 7 characters into its buffer; a longer value reads as unset.
  if (!switchedOn || switchedOn->empty() || switchedOn->size() > 7 || switchedOn->front() != u'1') {
    return result;
  }
  result.attempted = true;
  std::u16string reply = RunScript(scene, kVRayConvertScript);
  if (reply.empty()) {
    result.error =
        u"ExecuteMAXScriptScript вернул пусто/не-строку (см. Listener на предмет синтаксической "
        u"ошибки в скрипте)";
  } else if (reply == u"NONE") {
    result.attempted = false;
  } else if (std::optional<int32_t> converted = CountAfter(reply, u"CONVERTED:")) {
    result.succeeded = true;
    result.converted = *converted;
  } else if (reply.starts_with(u"ERROR:")) {
    result.error = reply.substr(6);
  } else {
    result.error = u"Неожиданный ответ скрипта: " + reply;
  }
  return result;
}

}  // namespace orvane
