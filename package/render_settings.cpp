#include "package/render_settings.h"

#include "graph/script_probes.h"

namespace orvane {

namespace {

constexpr std::u16string_view kColorQuery =
    u"(local m = \"unknown\"; local rs = \"\"; local g = 2.2;try ( m = (colorPipelineMgr.mode as "
    u"string) ) catch();try ( rs = (colorPipelineMgr.RenderingColorSpace as string) ) catch();try "
    u"( g = (colorPipelineMgr.displayGamma as float) ) catch();(m + \"|\" + rs + \"|\" + (g as "
    u"string)))";

constexpr std::u16string_view kDisplacementQuery =
    u"(local a = \"\"; local r = \"\";try ( a = (renderers.current.displacement_amount as string) "
    u") "
    u"catch();try ( r = (renderers.current.displacement_relative as string) ) catch();(a + \"|\" + "
    u"r))";

std::optional<std::u16string> RunQuiet(host::Interface& scene, std::u16string_view script) {
  host::ScriptResult result = scene.ExecuteMAXScriptScript(script, true, true);
  if (!result.succeeded) return std::nullopt;
  return result.stringValue;
}

}  // namespace

ColorSettings QueryColorSettings(host::Interface& scene) {
  ColorSettings settings;
  std::optional<std::u16string> reply = RunQuiet(scene, kColorQuery);
  if (!reply) return settings;
  std::vector<std::u16string_view> fields = SplitText(*reply, u'|');
  if (!fields[0].empty()) settings.mode = fields[0];
  if (fields.size() > 1) settings.renderingSpace = fields[1];
  if (fields.size() > 2) settings.displayGamma = ParseScriptFloat(fields[2]).value_or(2.2f);
  return settings;
}

RenderDisplacement QueryRenderDisplacement(host::Interface& scene) {
  RenderDisplacement settings;
  std::optional<std::u16string> reply = RunQuiet(scene, kDisplacementQuery);
  if (!reply) return settings;
  size_t bar = reply->find(u'|');
  if (bar == std::u16string::npos || bar == 0) return settings;
  std::optional<float> amount = ParseScriptFloat(std::u16string_view(*reply).substr(0, bar));
  if (!amount) return settings;
  std::u16string_view relative = std::u16string_view(*reply).substr(bar + 1);
  settings.amount = *amount;
  settings.relative = relative == u"true" || relative == u"True";
  settings.found = true;
  return settings;
}

}  // namespace orvane
