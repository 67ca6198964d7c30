#include <stdexcept>

#include "host/max/wrappers.h"

namespace orvane::host::max {

namespace {

// The SDK object behind a wrapper the core hands back.
::Object* SdkObject(host::Object* object) {
  if (auto* base = dynamic_cast<MaxObject*>(object)) return static_cast<::Object*>(base->sdk());
  if (auto* derived = dynamic_cast<MaxDerivedObject*>(object))
    return static_cast<::Object*>(derived->sdk());
  return nullptr;
}

// The conversion's result belongs to the caller unless it is the object itself: the core then
// gives it to a node or releases it (MaxObject::DeleteThis).
host::TriObject* ConvertToTri(::Object* object, host::TriObject* self, MaxObjects& objects,
                              TimeValue t) {
  if (object->CanConvertToType(triObjectClassID) == 0) return nullptr;
  ::Object* converted = object->ConvertToType(t, triObjectClassID);
  if (converted == nullptr) return nullptr;
  if (converted == object) return self;
  return objects.Converted(converted);
}

}  // namespace

// --- Nodes ---

host::INode* MaxNode::GetChildNode(int index) const {
  return objects_.Node(node_->GetChildNode(index));
}

host::INode* MaxNode::GetTarget() const {
  return objects_.Node(node_->GetTarget());
}

host::Matrix3 MaxNode::GetNodeTM(TimeValue t) const {
  ::Matrix3 sdk = node_->GetNodeTM(t);
  host::Matrix3 matrix;
  for (int row = 0; row < 4; ++row)
    matrix.rows[static_cast<size_t>(row)] = FromSdk(sdk.GetRow(row));
  return matrix;
}

host::Object* MaxNode::GetObjectRef() const {
  return objects_.ObjectOf(node_->GetObjectRef());
}

void MaxNode::SetObjectRef(host::Object* object) {
  node_->SetObjectRef(SdkObject(object));
}

host::Object* MaxNode::EvalWorldState(TimeValue t) {
  return objects_.ObjectOf(node_->EvalWorldState(t, TRUE).obj);
}

host::Mtl* MaxNode::GetMtl() const {
  return objects_.Material(node_->GetMtl());
}

// --- Meshes ---

MeshFace MaxMesh::GetFace(int index) const {
  ::Face& face = mesh_.faces[index];
  return {{static_cast<int>(face.v[0]), static_cast<int>(face.v[1]), static_cast<int>(face.v[2])},
          face.getMatID()};
}

std::array<int, 3> MaxMesh::GetVCFace(int face) const {
  const ::TVFace& colours = mesh_.vcFace[face];
  return {static_cast<int>(colours.t[0]), static_cast<int>(colours.t[1]),
          static_cast<int>(colours.t[2])};
}

void MaxMesh::SetVCFace(int face, std::array<int, 3> colorIndices) {
  mesh_.vcFace[face].setTVerts(static_cast<DWORD>(colorIndices[0]),
                               static_cast<DWORD>(colorIndices[1]),
                               static_cast<DWORD>(colorIndices[2]));
}

// --- Objects ---

MaxObject::MaxObject(::Object* object, MaxObjects& objects)
    : MaxAnimatable(object, objects), object_(object) {
  if (object->SuperClassID() == CAMERA_CLASS_ID) camera_ = static_cast<::CameraObject*>(object);
}

bool MaxObject::CanConvertToTriObject() const {
  return object_->CanConvertToType(triObjectClassID) != 0;
}

host::TriObject* MaxObject::ConvertToTriObject(TimeValue t) {
  return ConvertToTri(object_, this, objects_, t);
}

void MaxObject::DeleteThis() {
  objects_.Release(*this);
}

host::Mesh& MaxObject::GetMesh() {
  if (!(object_->ClassID() == triObjectClassID))
    throw std::logic_error("a mesh was asked of an object that is not a triangle mesh");
  if (!mesh_) mesh_ = std::make_unique<MaxMesh>(static_cast<::TriObject*>(object_)->GetMesh());
  return *mesh_;
}

bool MaxDerivedObject::CanConvertToTriObject() const {
  return derived_->CanConvertToType(triObjectClassID) != 0;
}

host::TriObject* MaxDerivedObject::ConvertToTriObject(TimeValue t) {
  return ConvertToTri(derived_, nullptr, objects_, t);
}

host::Modifier* MaxDerivedObject::GetModifier(int index) const {
  return objects_.ModifierOf(derived_->GetModifier(index));
}

host::Object* MaxDerivedObject::GetObjRef() const {
  return objects_.ObjectOf(derived_->GetObjRef());
}

}  // namespace orvane::host::max
