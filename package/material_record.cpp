#include "package/material_record.h"

#include "base/wide_text.h"
#include "graph/class_dispatch.h"
#include "graph/json_text.h"
#include "graph/tree_template.h"

namespace orvane {

bool IsMultiMaterial(const host::Mtl& material) {
  if (material.ClassID() == host::MULTI_MATERIAL_CLASS_ID) return true;
  std::u16string name = material.GetClassName();
  return name.find(u"Multi") != std::u16string::npos &&
         name.find(u"Texture") == std::u16string::npos;
}

namespace {

void WriteSlotRecord(const WriteContext& context, NodeTreeState& state, const host::Mtl* sub,
                     int index, std::string& out) {
  ResetVisitedNodes(state);
  std::u16string name = sub != nullptr ? sub->GetName() : std::u16string();
  out += "      {\n        \"material_id\": " + std::to_string(index + 1) +
         ",\n        \"material_name\": \"";
  AppendUtf8(out, EscapeJsonString(name));
  out += "\",\n        \"node_tree\": ";
  AppendNodeTree(context, state, sub, 3, out);
  out += "\n      }";
}

void WriteMaterialRecord(const WriteContext& context, NodeTreeState& state,
                         const host::Mtl& material, std::string& out) {
  if (!IsMultiMaterial(material)) {
    std::u16string type = NormalizeClassTypeName(material.GetClassName(), true);
    std::u16string name = material.GetName();
    ResetVisitedNodes(state);
    out += "{\n      \"type\": \"";
    AppendUtf8(out, EscapeJsonString(type));
    out += "\",\n      \"name\": \"";
    AppendUtf8(out, EscapeJsonString(name));
    out += "\",\n      \"node_tree\": ";
    // The material's tree is kept only as part of its record's template: no other record
    // holds the same material at this depth, so a template of the tree alone would only
    // double the memory.
    AppendNodeTree(context, state, &material, 2, out, KeepTemplates::kBranchesOnly);
    out += "\n    }";
    return;
  }
  out += "{\n      \"type\": \"Multimaterial\",\n      \"name\": \"";
  AppendUtf8(out, EscapeJsonString(material.GetName()));
  out += "\",\n      \"sub_materials\": [\n";
  int slots = material.NumSubMtls();
  for (int i = 0; i < slots; ++i) {
    WriteSlotRecord(context, state, material.GetSubMtl(i), i, out);
    out += i + 1 < slots ? ",\n" : "\n";
  }
  out += "      ]\n    }";
}

}  // namespace

void AppendMaterialRecord(const WriteContext& context, NodeTreeState& state,
                          const host::Mtl* material, std::vector<std::u16string>&,
                          std::string& out) {
  if (material == nullptr) {
    out += "null";
    return;
  }
  if (context.trees == nullptr) {
    WriteMaterialRecord(context, state, *material, out);
    return;
  }
  context.trees->idPlaces.clear();  // the places of earlier records are of no use any more
  // Every tree of a record starts from an empty visited list, so the record, like a tree,
  // depends only on the scene and on where the node counter stands.
  if (const TreeTemplate* known = context.trees->byMaterial.Find(material)) {
    if (known->kept()) {
      ResetVisitedNodes(state);
      RenderTemplate(*known, state, nullptr, out);  // a whole record: nothing larger is kept
    } else {
      WriteMaterialRecord(context, state, *material, out);
    }
    return;
  }
  uint32_t base = state.nodeCounter;
  size_t start = out.size();
  ResetVisitedNodes(state);
  WriteMaterialRecord(context, state, *material, out);
  *context.trees->byMaterial.TryEmplace(material).first =
      MakeTemplate(out, start, context.trees->idPlaces, base, state);
}

}  // namespace orvane
