#include "package/material_record.h"

#include "base/wide_text.h"
#include "graph/class_dispatch.h"
#include "graph/json_text.h"

namespace orvane {

bool IsMultiMaterial(const host::Mtl& material) {
  if (material.ClassID() == host::MULTI_MATERIAL_CLASS_ID) return true;
  std::u16string name = material.GetClassName();
  return name.find(u"Multi") != std::u16string::npos &&
         name.find(u"Texture") == std::u16string::npos;
}

namespace {

void AppendSlotRecord(const WriteContext& context, NodeTreeState& state, const host::Mtl* sub,
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

}  // namespace

void AppendMaterialRecord(const WriteContext& context, NodeTreeState& state,
                          const host::Mtl* material, std::vector<std::u16string>&,
                          std::string& out) {
  if (material == nullptr) {
    out += "null";
    return;
  }
  if (!IsMultiMaterial(*material)) {
    std::u16string type = NormalizeClassTypeName(material->GetClassName(), true);
    std::u16string name = material->GetName();
    ResetVisitedNodes(state);
    out += "{\n      \"type\": \"";
    AppendUtf8(out, EscapeJsonString(type));
    out += "\",\n      \"name\": \"";
    AppendUtf8(out, EscapeJsonString(name));
    out += "\",\n      \"node_tree\": ";
    AppendNodeTree(context, state, material, 2, out);
    out += "\n    }";
    return;
  }
  out += "{\n      \"type\": \"Multimaterial\",\n      \"name\": \"";
  AppendUtf8(out, EscapeJsonString(material->GetName()));
  out += "\",\n      \"sub_materials\": [\n";
  int slots = material->NumSubMtls();
  for (int i = 0; i < slots; ++i) {
    AppendSlotRecord(context, state, material->GetSubMtl(i), i, out);
    out += i + 1 < slots ? ",\n" : "\n";
  }
  out += "      ]\n    }";
}

}  // namespace orvane
