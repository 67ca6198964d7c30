#include "graph/node_tree.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <set>

#include "base/wide_text.h"
#include "graph/class_dispatch.h"
#include "graph/param_lookup.h"
#include "graph/script_probes.h"
#include "graph/slot_switch.h"
#include "graph/tree_template.h"

namespace orvane {

namespace {

constexpr uint32_t kNoId = std::numeric_limits<uint32_t>::max();

bool IsMaterial(const host::Animatable& object) {
  return object.SuperClassID() == host::MATERIAL_CLASS_ID;
}

class TreeWriter {
 public:
  TreeWriter(const WriteContext& context, NodeTreeState& state)
      : context_(context), state_(state) {}

  std::u16string Write(const host::MtlBase* object, int depth);
  int refsWritten() const { return refs_; }

 private:
  std::u16string WriteMultiTexture(const host::MtlBase& map, const std::u16string& indent,
                                   const std::u16string& inner, FragmentList& fragments, int depth);
  void WriteSlots(const host::MtlBase& object, const std::u16string& inner, int depth,
                  std::vector<std::u16string>& children, std::vector<std::u16string>& disabled);
  void WriteLayers(const host::Mtl& material, const std::u16string& inner, int depth,
                   std::vector<std::u16string>& children);
  std::u16string LayerEntry(const std::u16string& inner, int number, const std::u16string& material,
                            std::optional<bool> enabled, float blend);
  void AppendParams(FragmentList& fragments, const host::MtlBase& object);
  float BlendAmount(const host::Mtl& material, int index);
  std::optional<bool> LayerToggle(const host::Mtl& material, int index);

  const WriteContext& context_;
  NodeTreeState& state_;
  int refs_ = 0;
};

std::u16string TreeWriter::Write(const host::MtlBase* object, int depth) {
  if (object == nullptr) return u"null";
  std::u16string indent(static_cast<size_t>(2 * depth), u' ');
  std::u16string inner = indent + u"  ";
  host::AnimHandle handle = object->GetHandle();
  if (handle != 0) {
    auto seen = state_.visited.find(handle);
    if (seen != state_.visited.end() && seen->second != kNoId) {
      ++refs_;
      return indent + u"{ \"ref\": " + Decimal(seen->second) + u" }";
    }
  }
  std::u16string className = object->GetClassName();
  uint32_t id = ++state_.nodeCounter;
  bool material = IsMaterial(*object);
  bool named = material || object->SuperClassID() == host::TEXMAP_CLASS_ID;
  // Recorded before the children are walked, so a child pointing back is a reference.
  if (handle != 0) {
    auto [entry, inserted] = state_.visited.emplace(handle, id);
    if (!inserted && entry->second == kNoId) entry->second = id;
  }
  FragmentList fragments{
      u"\"node_id\": " + Decimal(id),
      u"\"type\": \"" + EscapeJsonString(NormalizeClassTypeName(className, material)) + u"\"",
      u"\"name\": \"" + EscapeJsonString(named ? object->GetName() : std::u16string()) + u"\""};
  AppendParams(fragments, *object);

  if (!material && object->SuperClassID() == host::TEXMAP_CLASS_ID &&
      LowerAscii(className) == u"multitexture") {
    return WriteMultiTexture(*object, indent, inner, fragments, depth);
  }
  std::vector<std::u16string> children, disabled;
  WriteSlots(*object, inner, depth, children, disabled);
  if (material) WriteLayers(static_cast<const host::Mtl&>(*object), inner, depth, children);

  std::u16string lowered = LowerAscii(className);
  if (children.empty() && material &&
      (lowered == u"material output selector" || lowered == u"material_output_selector")) {
    host::Animatable* source = FindParamReference(object, u"source", context_.time);
    if (source != nullptr && IsMaterial(*source)) {
      std::u16string walked = Write(static_cast<const host::Mtl*>(source), depth + 1);
      children.push_back(LayerEntry(inner, 1, walked, std::nullopt, 1.0f));
    }
  }
  if (!disabled.empty()) {
    std::u16string list = u"\"disabled_slots\": [";
    for (size_t i = 0; i < disabled.size(); ++i) {
      if (i > 0) list += u", ";
      list += u"\"" + EscapeJsonString(disabled[i]) + u"\"";
    }
    fragments.push_back(list + u"]");
  }
  std::u16string suffix;
  if (!children.empty()) {
    suffix = u",\n" + inner + u"\"children\": {\n";
    for (size_t i = 0; i < children.size(); ++i) {
      if (i > 0) suffix += u",\n";
      suffix += children[i];
    }
    suffix += u"\n" + inner + u"}";
  }
  return indent + u"{\n" + JoinFragments(fragments, inner) + suffix + u"\n" + indent + u"}";
}

void TreeWriter::AppendParams(FragmentList& fragments, const host::MtlBase& object) {
  if (context_.params != nullptr) {
    auto cached = context_.params->byObject.find(&object);
    if (cached != context_.params->byObject.end()) {
      fragments.insert(fragments.end(), cached->second.begin(), cached->second.end());
      return;
    }
  }
  FragmentList own = WriteParamsForClass(context_, object);
  AppendOutputProbe(own, context_, object);
  fragments.insert(fragments.end(), own.begin(), own.end());
  if (context_.params != nullptr) context_.params->byObject.emplace(&object, std::move(own));
}

std::u16string TreeWriter::WriteMultiTexture(const host::MtlBase& map, const std::u16string& indent,
                                             const std::u16string& inner, FragmentList& fragments,
                                             int depth) {
  std::vector<std::u16string> kept;
  for (int i = 0; i < map.NumSubTexmaps(); ++i) {
    ParamValue on = FindParamTabValue(&map, u"submap_on", i, context_.time);
    if (on.kind == ParamKind::kBool && !on.boolValue) continue;
    const host::Texmap* sub = map.GetSubTexmap(i);
    if (sub != nullptr) kept.push_back(Write(sub, depth + 1));
  }
  if (!kept.empty()) {
    std::u16string textures = inner + u"\"textures\": [\n";
    for (size_t i = 0; i < kept.size(); ++i) {
      if (i > 0) textures += u",\n";
      textures += kept[i];
    }
    fragments.push_back(textures + u"\n" + inner + u"]");
  }
  return indent + u"{\n" + JoinFragments(fragments, inner) + u"\n" + indent + u"}";
}

void TreeWriter::WriteSlots(const host::MtlBase& object, const std::u16string& inner, int depth,
                            std::vector<std::u16string>& children,
                            std::vector<std::u16string>& disabled) {
  std::set<std::u16string> used;
  for (int i = 0; i < object.NumSubTexmaps(); ++i) {
    std::u16string slot = object.GetSubTexmapSlotName(i, false);
    if (slot.empty() || used.count(slot) != 0)
      slot = u"slot_" + Decimal(static_cast<uint64_t>(i) + 1);
    used.insert(slot);
    const host::Texmap* map = object.GetSubTexmap(i);
    if (map == nullptr) continue;
    if (!IsSubTexmapEnabled(&object, map, context_.time)) {
      disabled.push_back(slot);
      continue;
    }
    children.push_back(inner + u"  \"" + EscapeJsonString(slot) + u"\": " + Write(map, depth + 1));
  }
}

float TreeWriter::BlendAmount(const host::Mtl& material, int index) {
  ParamValue amount = FindParamTabValue(&material, u"blendAmounts", index, context_.time);
  if (amount.kind == ParamKind::kFloat) return amount.floatValue;
  if (index == 0) return 1.0f;
  ParamValue blend = FindParamValue(
      &material, u"blend_" + Decimal(static_cast<uint64_t>(index) - 1), context_.time);
  if (blend.kind == ParamKind::kColor) return (blend.color.g + blend.color.r + blend.color.b) / 3;
  if (blend.kind == ParamKind::kFloat) return blend.floatValue;
  return 1.0f;
}

// Layer switches go by different names in different layered materials; the first one the
// material has decides.
std::optional<bool> TreeWriter::LayerToggle(const host::Mtl& material, int index) {
  auto asBool = [](const ParamValue& value) -> std::optional<bool> {
    if (value.kind == ParamKind::kBool) return value.boolValue;
    return std::nullopt;
  };
  host::TimeValue t = context_.time;
  std::u16string number = Decimal(static_cast<uint64_t>(index) + 1);
  if (auto on = asBool(FindParamValue(&material, u"map" + number + u"Enabled", t))) return on;
  if (auto on = asBool(FindParamTabValue(&material, u"mapEnabled", index, t))) return on;
  if (auto on = asBool(FindParamTabValue(&material, u"mapEnables", index, t))) return on;
  if (index >= 1) {  // layered materials whose first sub-material is the base
    if (auto on = asBool(FindParamTabValue(&material, u"layersOn", index - 1, t))) return on;
  }
  return std::nullopt;
}

std::u16string TreeWriter::LayerEntry(const std::u16string& inner, int number,
                                      const std::u16string& material, std::optional<bool> enabled,
                                      float blend) {
  std::u16string entry = inner + u"  \"layer_" + Decimal(static_cast<uint64_t>(number)) +
                         u"\": {\n" + inner + u"    \"material\": " + material + u",\n";
  if (enabled) entry += inner + u"    \"enabled\": " + FormatJsonBool(*enabled) + u",\n";
  return entry + inner + u"    \"blend_amount\": " + FormatJsonNumber(blend) + u"\n" + inner +
         u"  }";
}

void TreeWriter::WriteLayers(const host::Mtl& material, const std::u16string& inner, int depth,
                             std::vector<std::u16string>& children) {
  for (int i = 0; i < material.NumSubMtls(); ++i) {
    float blend = BlendAmount(material, i);
    std::u16string walked = Write(material.GetSubMtl(i), depth + 1);
    children.push_back(LayerEntry(inner, i + 1, walked, LayerToggle(material, i), blend));
  }
}

int WriteAfresh(const WriteContext& context, NodeTreeState& state, const host::MtlBase* object,
                int depth, std::string& out) {
  TreeWriter writer(context, state);
  AppendUtf8(out, writer.Write(object, depth));
  return writer.refsWritten();
}

}  // namespace

void ResetVisitedNodes(NodeTreeState& state) {
  state.visited.clear();
}

int AppendNodeTree(const WriteContext& context, NodeTreeState& state, const host::MtlBase* object,
                   int depth, std::string& out) {
  if (context.trees == nullptr || object == nullptr || !state.visited.empty())
    return WriteAfresh(context, state, object, depth, out);
  auto [entry, first] = context.trees->byRoot.try_emplace({object, depth});
  if (!first) {
    if (entry->second) return RenderTemplate(*entry->second, state, out);
    return WriteAfresh(context, state, object, depth, out);
  }
  uint32_t base = state.nodeCounter;
  size_t start = out.size();
  int refs = WriteAfresh(context, state, object, depth, out);
  entry->second = MakeTemplate(std::string_view(out).substr(start), base, state, refs);
  return refs;
}

std::u16string WriteNodeTree(const WriteContext& context, NodeTreeState& state,
                             const host::MtlBase* object, int depth) {
  std::string text;
  AppendNodeTree(context, state, object, depth, text);
  return FromUtf8(text);
}

}  // namespace orvane
