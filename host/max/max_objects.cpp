#include "host/max/wrappers.h"

namespace orvane::host::max {

// Keyed by the SDK object's Animatable address, which every path to it agrees on.
template <class Wrapper, class Sdk>
Wrapper* MaxObjects::Find(Sdk* sdk) {
  if (sdk == nullptr) return nullptr;
  std::unique_ptr<host::Animatable>& slot = animatables_[static_cast<::Animatable*>(sdk)];
  if (!slot) slot = std::make_unique<Wrapper>(sdk, *this);
  // Each SDK object is wrapped by its super class, so a second lookup finds the same kind.
  return dynamic_cast<Wrapper*>(slot.get());
}

host::INode* MaxObjects::Node(::INode* node) {
  return Find<MaxNode>(node);
}

host::Object* MaxObjects::ObjectOf(::Object* object) {
  if (object == nullptr) return nullptr;
  if (object->SuperClassID() == GEN_DERIVOB_CLASS_ID)
    return Find<MaxDerivedObject>(static_cast<::IDerivedObject*>(object));
  return Find<MaxObject>(object);
}

host::Modifier* MaxObjects::ModifierOf(::Modifier* modifier) {
  return Find<MaxModifier>(modifier);
}

host::Mtl* MaxObjects::Material(::Mtl* material) {
  return Find<MaxMtl>(material);
}

host::Texmap* MaxObjects::Map(::Texmap* map) {
  return Find<MaxTexmap>(map);
}

host::Animatable* MaxObjects::Any(::Animatable* animatable) {
  if (animatable == nullptr) return nullptr;
  switch (animatable->SuperClassID()) {
    case BASENODE_CLASS_ID: return Node(static_cast<::INode*>(animatable));
    case MATERIAL_CLASS_ID: return Material(static_cast<::Mtl*>(animatable));
    case TEXMAP_CLASS_ID: return Map(static_cast<::Texmap*>(animatable));
    case OSM_CLASS_ID:
    case WSM_CLASS_ID: return ModifierOf(static_cast<::Modifier*>(animatable));
    case GEN_DERIVOB_CLASS_ID:
    case GEOMOBJECT_CLASS_ID:
    case CAMERA_CLASS_ID:
    case LIGHT_CLASS_ID:
    case SHAPE_CLASS_ID:
    case HELPER_CLASS_ID: return ObjectOf(static_cast<::Object*>(animatable));
    default: return Find<MaxOtherAnimatable>(animatable);
  }
}

host::IParamBlock2* MaxObjects::Block(::IParamBlock2* block) {
  if (block == nullptr) return nullptr;
  std::unique_ptr<MaxParamBlock>& slot = blocks_[block];
  if (!slot) slot = std::make_unique<MaxParamBlock>(block, *this);
  return slot.get();
}

MaxObject* MaxObjects::Converted(::Object* object) {
  return Find<MaxObject>(object);
}

void MaxObjects::Release(MaxObject& converted) {
  ::Animatable* sdk = converted.sdk();
  animatables_.erase(sdk);
  // Not settled: the SDK's samples free an unwanted conversion with DeleteThis, others with
  // DeleteMe or MaybeAutoDelete. Nothing refers to a fresh conversion, so DeleteThis is used.
  sdk->DeleteThis();
}

void MaxObjects::Clear() {
  blocks_.clear();
  animatables_.clear();
}

}  // namespace orvane::host::max
