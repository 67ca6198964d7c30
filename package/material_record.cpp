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

std::u16string SlotRecord(const WriteContext& context, NodeTreeState& state, const host::Mtl* sub,
                          int index) {
  ResetVisitedNodes(state);
  std::u16string tree = sub != nullptr ? WriteNodeTree(context, state, sub, 3) : u"null";
  std::u16string name = sub != nullptr ? sub->GetName() : std::u16string();
  return u"      {\n        \"material_id\": " + AsciiToWide(std::to_string(index + 1)) +
         u",\n        \"material_name\": \"" + EscapeJsonString(name) +
         u"\",\n        \"node_tree\": " + tree + u"\n      }";
}

}  // namespace

std::u16string BuildMaterialRecord(const WriteContext& context, NodeTreeState& state,
                                   const host::Mtl* material, std::vector<std::u16string>&) {
  if (material == nullptr) return u"null";
  if (!IsMultiMaterial(*material)) {
    ResetVisitedNodes(state);
    std::u16string tree = WriteNodeTree(context, state, material, 2);
    return u"{\n      \"type\": \"" +
           EscapeJsonString(NormalizeClassTypeName(material->GetClassName(), true)) +
           u"\",\n      \"name\": \"" + EscapeJsonString(material->GetName()) +
           u"\",\n      \"node_tree\": " + tree + u"\n    }";
  }
  std::u16string record = u"{\n      \"type\": \"Multimaterial\",\n      \"name\": \"" +
                          EscapeJsonString(material->GetName()) +
                          u"\",\n      \"sub_materials\": [\n";
  int slots = material->NumSubMtls();
  for (int i = 0; i < slots; ++i) {
    record += SlotRecord(context, state, material->GetSubMtl(i), i);
    record += i + 1 < slots ? u",\n" : u"\n";
  }
  return record + u"      ]\n    }";
}

}  // namespace orvane
