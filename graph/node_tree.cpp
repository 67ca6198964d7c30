#include "graph/node_tree.h"

#include <algorithm>
#include <optional>

#include "base/wide_text.h"
#include "graph/class_dispatch.h"
#include "graph/param_lookup.h"
#include "graph/script_probes.h"
#include "graph/slot_switch.h"
#include "graph/tree_template.h"

namespace orvane {

namespace {

// Appends each piece in turn: the tree's text is written piece by piece, never built apart.
template <class... Pieces>
void Append(std::string& out, const Pieces&... pieces) {
  (out.append(pieces), ...);
}

bool IsMaterial(const host::Animatable& object) {
  return object.SuperClassID() == host::MATERIAL_CLASS_ID;
}

// Writes a tree straight into the package's bytes, in the order the walk meets the scene: every
// host call happens as often and in the same order as the tree's text reads.
class TreeWriter {
 public:
  TreeWriter(const WriteContext& context, NodeTreeState& state, std::string& out)
      : context_(context),
        state_(state),
        out_(out),
        placesStart_(context.trees != nullptr ? context.trees->idPlaces.size() : 0) {}

  // A tree already written from a fresh start is its template again, with its ids shifted, as
  // long as none of its nodes has been written before it: then it comes out the same.
  void Write(const host::MtlBase* object, int depth);
  // The same, but the root's own template is neither used nor kept.
  void WriteRootUnkept(const host::MtlBase* object, int depth);

 private:
  void AppendId(uint32_t id);
  // A reference to the object's node if it was written before; false if not.
  bool WriteRef(const host::MtlBase& object, int depth);
  void WriteNode(const host::MtlBase& object, int depth);
  bool NoneVisited(const TreeTemplate& tree) const;
  // A node's children, written as they are walked. The slots found switched off are listed
  // among the members, ahead of the children, once the walk has found them all.
  struct Children {
    size_t membersEnd = 0;
    int written = 0;
    std::vector<std::u16string> disabled;
  };

  void WriteParams(const host::MtlBase& object, const std::string& inner);
  void WriteMultiTexture(const host::MtlBase& map, const std::string& inner, int depth);
  void BeginChild(Children& children, const std::string& inner);
  void EndChildren(const Children& children, const std::string& inner);
  void WriteSlots(const host::MtlBase& object, const std::string& inner, int depth,
                  Children& children);
  void WriteLayers(const host::Mtl& material, const std::string& inner, int depth,
                   Children& children);
  void BeginLayerEntry(const std::string& inner, int number);
  void EndLayerEntry(const std::string& inner, std::optional<bool> enabled, float blend);
  float BlendAmount(const host::Mtl& material, int index);
  std::optional<bool> LayerToggle(const host::Mtl& material, int index);

  const WriteContext& context_;
  NodeTreeState& state_;
  std::string& out_;
  size_t placesStart_;  // the first id place of this writer's text
  ParamMembers uncachedParams_;
};

// Every id goes through here, so that a template finds its ids without searching its text.
void TreeWriter::AppendId(uint32_t id) {
  if (context_.trees != nullptr) context_.trees->idPlaces.push_back({out_.size(), id});
  out_ += std::to_string(id);
}

bool TreeWriter::WriteRef(const host::MtlBase& object, int depth) {
  host::AnimHandle handle = object.GetHandle();
  if (handle == 0) return false;
  const uint32_t* seen = state_.visited.Find(handle);
  if (seen == nullptr) return false;
  Append(out_, std::string(static_cast<size_t>(2 * depth), ' '), "{ \"ref\": ");
  AppendId(*seen);
  out_ += " }";
  return true;
}

void TreeWriter::WriteRootUnkept(const host::MtlBase* object, int depth) {
  if (object == nullptr) {
    out_ += "null";
  } else if (!WriteRef(*object, depth)) {
    WriteNode(*object, depth);
  }
}

void TreeWriter::Write(const host::MtlBase* object, int depth) {
  if (object == nullptr) {
    out_ += "null";
    return;
  }
  if (WriteRef(*object, depth)) return;
  if (context_.trees == nullptr) {
    WriteNode(*object, depth);
    return;
  }
  TreeTemplates::Root root{object, depth};
  if (const TreeTemplate* known = context_.trees->byRoot.Find(root)) {
    if (known->kept() && NoneVisited(*known)) {
      RenderTemplate(*known, state_, &context_.trees->idPlaces, out_);
    } else {
      WriteNode(*object, depth);
    }
    return;
  }
  bool freshStart = state_.visited.empty();
  uint32_t base = state_.nodeCounter;
  size_t start = out_.size();
  std::vector<IdPlace>& places = context_.trees->idPlaces;
  size_t firstPlace = places.size();
  WriteNode(*object, depth);
  TreeTemplate made =
      MakeTemplate(out_, start, std::span(places).subspan(firstPlace), base, state_);
  // From a fresh start a tree that cannot be kept never can be. Further in, a reference to a
  // node written before the tree may be what stopped it, and elsewhere it may be kept.
  if (made.kept() || freshStart) *context_.trees->byRoot.TryEmplace(root).first = std::move(made);
}

// Whether none of the template's nodes has been written yet, so that the tree comes out as it did
// from a fresh start: no reference to a node written before it.
bool TreeWriter::NoneVisited(const TreeTemplate& tree) const {
  return std::none_of(tree.visited().begin(), tree.visited().end(), [&](const auto& node) {
    return state_.visited.Find(node.handle) != nullptr;
  });
}

void TreeWriter::WriteNode(const host::MtlBase& node, int depth) {
  const host::MtlBase* object = &node;  // the walk below passes it on as it stands
  std::string indent(static_cast<size_t>(2 * depth), ' ');
  std::string inner = indent + "  ";
  host::AnimHandle handle = object->GetHandle();
  std::u16string className = object->GetClassName();
  uint32_t id = ++state_.nodeCounter;
  bool material = IsMaterial(*object);
  bool named = material || object->SuperClassID() == host::TEXMAP_CLASS_ID;
  // Recorded before the children are walked, so a child pointing back is a reference.
  if (handle != 0) *state_.visited.TryEmplace(handle).first = id;
  Append(out_, indent, "{\n", inner, "\"node_id\": ");
  AppendId(id);
  Append(out_, ",\n", inner, "\"type\": \"");
  AppendEscapedJsonUtf8(out_, NormalizeClassTypeName(className, material));
  Append(out_, "\",\n", inner, "\"name\": \"");
  if (named) AppendEscapedJsonUtf8(out_, object->GetName());
  out_ += '"';
  WriteParams(*object, inner);

  std::u16string lowered = LowerAscii(className);
  if (!material && object->SuperClassID() == host::TEXMAP_CLASS_ID && lowered == u"multitexture") {
    WriteMultiTexture(*object, inner, depth);
  } else {
    Children children;
    children.membersEnd = out_.size();
    WriteSlots(*object, inner, depth, children);
    if (material) WriteLayers(static_cast<const host::Mtl&>(*object), inner, depth, children);
    if (children.written == 0 && material &&
        (lowered == u"material output selector" || lowered == u"material_output_selector")) {
      host::Animatable* source = FindParamReference(object, u"source", context_.time);
      if (source != nullptr && IsMaterial(*source)) {
        BeginChild(children, inner);
        BeginLayerEntry(inner, 1);
        Write(static_cast<const host::Mtl*>(source), depth + 1);
        EndLayerEntry(inner, std::nullopt, 1.0f);
      }
    }
    EndChildren(children, inner);
  }
  Append(out_, "\n", indent, "}");
}

void TreeWriter::WriteParams(const host::MtlBase& object, const std::string& inner) {
  const ParamMembers* members = nullptr;
  if (context_.params != nullptr) {
    members = context_.params->byObject.Find(&object);
  }
  if (members == nullptr) {
    FragmentList own = WriteParamsForClass(context_, object);
    AppendOutputProbe(own, context_, object);
    ParamMembers written;
    written.ends.reserve(own.size());
    for (const std::u16string& fragment : own) {
      AppendUtf8(written.text, fragment);
      written.ends.push_back(static_cast<uint32_t>(written.text.size()));
    }
    ParamMembers& kept = context_.params != nullptr
                             ? *context_.params->byObject.TryEmplace(&object).first
                             : uncachedParams_;
    kept = std::move(written);
    members = &kept;
  }
  std::string_view text = members->text;
  uint32_t start = 0;
  for (uint32_t end : members->ends) {
    Append(out_, ",\n", inner, text.substr(start, end - start));
    start = end;
  }
}

void TreeWriter::WriteMultiTexture(const host::MtlBase& map, const std::string& inner, int depth) {
  bool anyKept = false;
  for (int i = 0; i < map.NumSubTexmaps(); ++i) {
    ParamValue on = FindParamTabValue(&map, u"submap_on", i, context_.time);
    if (on.kind == ParamKind::kBool && !on.boolValue) continue;
    const host::Texmap* sub = map.GetSubTexmap(i);
    if (sub == nullptr) continue;
    // The member's text starts with its own indent, and every member is indented again.
    Append(out_, ",\n");
    if (!anyKept) Append(out_, inner, inner, "\"textures\": [\n");
    anyKept = true;
    Write(sub, depth + 1);
  }
  if (anyKept) Append(out_, "\n", inner, "]");
}

void TreeWriter::BeginChild(Children& children, const std::string& inner) {
  out_ += ",\n";
  if (children.written++ == 0) Append(out_, inner, "\"children\": {\n");
}

void TreeWriter::EndChildren(const Children& children, const std::string& inner) {
  if (children.written > 0) Append(out_, "\n", inner, "}");
  if (children.disabled.empty()) return;
  std::string list = ",\n" + inner + "\"disabled_slots\": [";
  for (size_t i = 0; i < children.disabled.size(); ++i) {
    if (i > 0) list += ", ";
    list += '"';
    AppendEscapedJsonUtf8(list, children.disabled[i]);
    list += '"';
  }
  list += ']';
  out_.insert(children.membersEnd, list);
  if (context_.trees == nullptr) return;
  std::vector<IdPlace>& places = context_.trees->idPlaces;
  for (size_t i = places.size(); i > placesStart_ && places[i - 1].at >= children.membersEnd; --i)
    places[i - 1].at += list.size();
}

void TreeWriter::WriteSlots(const host::MtlBase& object, const std::string& inner, int depth,
                            Children& children) {
  // A handful of slots per object: a list searched in place costs less than a tree of them.
  std::vector<std::u16string> used;
  for (int i = 0; i < object.NumSubTexmaps(); ++i) {
    std::u16string slot = object.GetSubTexmapSlotName(i, false);
    if (slot.empty() || std::find(used.begin(), used.end(), slot) != used.end())
      slot = u"slot_" + Decimal(static_cast<uint64_t>(i) + 1);
    used.push_back(slot);
    const host::Texmap* map = object.GetSubTexmap(i);
    if (map == nullptr) continue;
    if (!IsSubTexmapEnabled(&object, map, context_.time)) {
      children.disabled.push_back(slot);
      continue;
    }
    BeginChild(children, inner);
    Append(out_, inner, "  \"");
    AppendEscapedJsonUtf8(out_, slot);
    out_ += "\": ";
    Write(map, depth + 1);
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

void TreeWriter::BeginLayerEntry(const std::string& inner, int number) {
  Append(out_, inner, "  \"layer_", std::to_string(number), "\": {\n", inner, "    \"material\": ");
}

void TreeWriter::EndLayerEntry(const std::string& inner, std::optional<bool> enabled, float blend) {
  out_ += ",\n";
  if (enabled) Append(out_, inner, "    \"enabled\": ", *enabled ? "true" : "false", ",\n");
  Append(out_, inner, "    \"blend_amount\": ");
  AppendUtf8(out_, FormatJsonNumber(blend));
  Append(out_, "\n", inner, "  }");
}

void TreeWriter::WriteLayers(const host::Mtl& material, const std::string& inner, int depth,
                             Children& children) {
  for (int i = 0; i < material.NumSubMtls(); ++i) {
    float blend = BlendAmount(material, i);
    BeginChild(children, inner);
    BeginLayerEntry(inner, i + 1);
    Write(material.GetSubMtl(i), depth + 1);
    EndLayerEntry(inner, LayerToggle(material, i), blend);
  }
}

}  // namespace

void ResetVisitedNodes(NodeTreeState& state) {
  state.visited.clear();
}

void AppendNodeTree(const WriteContext& context, NodeTreeState& state, const host::MtlBase* object,
                    int depth, std::string& out, KeepTemplates keep) {
  TreeWriter writer(context, state, out);
  if (keep == KeepTemplates::kBranchesOnly) {
    writer.WriteRootUnkept(object, depth);
  } else {
    writer.Write(object, depth);
  }
}

std::u16string WriteNodeTree(const WriteContext& context, NodeTreeState& state,
                             const host::MtlBase* object, int depth) {
  std::string text;
  AppendNodeTree(context, state, object, depth, text);
  return FromUtf8(text);
}

}  // namespace orvane
