#include "package/environment.h"

#include <charconv>

#include "base/wide_text.h"
#include "graph/json_text.h"

namespace orvane {

namespace {

constexpr std::u16string_view kRendererBackgroundQuery =
    u"(local s = \"\"; local c = \"\"; local h = \"\";try ( s = (renderers.current.bg_source as "
    u"string) ) catch();try ( local cc = renderers.current.bg_color; c = ((cc.r/255.0) as string) "
    u"+ \",\" + ((cc.g/255.0) as string) + \",\" + ((cc.b/255.0) as string) ) catch();try ( local "
    u"tm = renderers.current.bg_texmap; if tm != undefined then h = ((getHandleByAnim tm) as "
    u"string) ) catch();(s + \"|\" + c + \"|\" + h))";

// The renderer's texmap by the handle the script printed, or null.
const host::Texmap* MapByHandle(host::Interface& scene, std::u16string_view digits) {
  std::string ascii;
  for (char16_t c : digits) {
    if (c < u'0' || c > u'9') return nullptr;
    ascii += static_cast<char>(c);
  }
  host::AnimHandle handle = 0;
  auto [end, error] = std::from_chars(ascii.data(), ascii.data() + ascii.size(), handle);
  if (error != std::errc() || end != ascii.data() + ascii.size()) return nullptr;
  host::Animatable* found = scene.GetAnimByHandle(handle);
  if (found == nullptr || found->SuperClassID() != host::TEXMAP_CLASS_ID) return nullptr;
  return static_cast<const host::Texmap*>(found);
}

std::u16string RendererBackground(const WriteContext& context, NodeTreeState& state,
                                  std::vector<std::u16string>& log) {
  host::ScriptResult result =
      context.scene.ExecuteMAXScriptScript(kRendererBackgroundQuery, true, true);
  if (!result.succeeded || !result.stringValue) return {};
  std::u16string_view text = *result.stringValue;
  size_t first = text.find(u'|');
  if (first == std::u16string_view::npos || first == 0 || first + 1 >= text.size()) return {};
  size_t second = text.find(u'|', first + 1);
  if (second == std::u16string_view::npos) return {};
  std::u16string_view source = text.substr(0, first);
  std::u16string_view color = text.substr(first + 1, second - first - 1);
  std::u16string_view handle = text.substr(second + 1);
  std::u16string out = u",\n    \"corona_bg_source\": " + std::u16string(source);
  if (!color.empty()) out += u",\n    \"corona_bg_color\": [" + std::u16string(color) + u"]";
  out += u",\n    \"corona_bg_map\": ";
  const host::Texmap* map = handle.empty() ? nullptr : MapByHandle(context.scene, handle);
  if (map == nullptr) return out + u"null";
  ResetVisitedNodes(state);
  out += WriteNodeTree(context, state, map, 2);
  log.push_back(u"Corona scene environment map exported: " + map->GetName());
  return out;
}

}  // namespace

std::u16string WriteEnvironmentJson(const WriteContext& context, NodeTreeState& state,
                                    std::vector<std::u16string>& log) {
  host::Interface& scene = context.scene;
  bool useMap = scene.GetUseEnvironmentMap();
  const host::Texmap* map = scene.GetEnvironmentMap();
  std::u16string out = u",\n  \"environment\": {\n    \"background_color\": " +
                       FormatJsonColor(scene.GetBackGround(context.time)) +
                       u",\n    \"use_map\": " + FormatJsonBool(useMap) + u",\n    \"map\": ";
  if (map == nullptr) {
    out += u"null";
    log.push_back(u"Environment: colour only (no map)");
  } else {
    ResetVisitedNodes(state);
    out += WriteNodeTree(context, state, map, 2);
    log.push_back(u"Environment map exported: " + map->GetName() +
                  (useMap ? u" (Use Map on)" : u" (Use Map OFF - colour renders)"));
  }
  return out + RendererBackground(context, state, log) + u"\n  }";
}

}  // namespace orvane
