// The host interface's objects over the SDK's: one thin wrapper per SDK object, made when the
// core first reaches it and kept by MaxObjects until the send is over.
#pragma once

#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "host/max/sdk.h"

namespace orvane::host::max {

class MaxObjects;
class MaxParamBlock;

// What every wrapper answers from its SDK animatable.
template <class Base>
class MaxAnimatable : public Base {
 public:
  MaxAnimatable(::Animatable* sdk, MaxObjects& objects) : sdk_(sdk), objects_(objects) {}

  AnimHandle GetHandle() const override { return ::Animatable::GetHandleByAnim(sdk_); }
  std::u16string GetClassName() const override { return Text(SdkClassName(sdk_).data()); }
  host::Class_ID ClassID() const override { return FromSdk(sdk_->ClassID()); }
  SClass_ID SuperClassID() const override { return static_cast<SClass_ID>(sdk_->SuperClassID()); }
  int NumParamBlocks() const override { return sdk_->NumParamBlocks(); }
  host::IParamBlock2* GetParamBlock(int index) const override;

  ::Animatable* sdk() const { return sdk_; }

 protected:
  ::Animatable* sdk_;
  MaxObjects& objects_;
};

class MaxNode final : public MaxAnimatable<host::INode> {
 public:
  MaxNode(::INode* node, MaxObjects& objects) : MaxAnimatable(node, objects), node_(node) {}

  std::u16string GetName() const override { return Text(node_->GetName()); }
  void SetName(std::u16string_view name) override { node_->SetName(SdkText(name).c_str()); }
  int NumberOfChildren() const override { return node_->NumberOfChildren(); }
  host::INode* GetChildNode(int index) const override;
  host::INode* GetTarget() const override;
  host::Matrix3 GetNodeTM(TimeValue t) const override;
  host::Object* GetObjectRef() const override;
  void SetObjectRef(host::Object* object) override;
  host::Object* EvalWorldState(TimeValue t) override;
  host::Mtl* GetMtl() const override;

 private:
  ::INode* node_;
};

class MaxMesh final : public host::Mesh {
 public:
  explicit MaxMesh(::Mesh& mesh) : mesh_(mesh) {}

  int GetNumVerts() const override { return mesh_.getNumVerts(); }
  host::Point3 GetVert(int index) const override { return FromSdk(mesh_.getVert(index)); }
  int GetNumFaces() const override { return mesh_.getNumFaces(); }
  MeshFace GetFace(int index) const override;
  int GetNumVertCol() const override { return mesh_.getNumVertCol(); }
  host::Point3 GetVertCol(int index) const override { return FromSdk(mesh_.vertCol[index]); }
  // The colour faces run parallel to the faces once there are any.
  int GetNumVCFaces() const override { return mesh_.vcFace != nullptr ? mesh_.getNumFaces() : 0; }
  std::array<int, 3> GetVCFace(int face) const override;
  void SetNumVertCol(int count) override { mesh_.setNumVertCol(count); }
  void SetVertCol(int index, host::Point3 color) override { mesh_.vertCol[index] = ToSdk(color); }
  void SetNumVCFaces(int count) override { mesh_.setNumVCFaces(count); }
  void SetVCFace(int face, std::array<int, 3> colorIndices) override;
  void InvalidateGeomCache() override { mesh_.InvalidateGeomCache(); }

 private:
  ::Mesh& mesh_;
};

// A base object: also a camera when it is one, and a triangle mesh when it is a triangle-mesh
// object.
class MaxObject final : public MaxAnimatable<host::TriObject>, public host::GenCamera {
 public:
  MaxObject(::Object* object, MaxObjects& objects);

  host::GenCamera* AsCamera() override { return camera_ != nullptr ? this : nullptr; }
  bool CanConvertToTriObject() const override;
  host::TriObject* ConvertToTriObject(TimeValue t) override;
  void DeleteThis() override;
  // Only for what ConvertToTriObject answered: a triangle-mesh object.
  host::Mesh& GetMesh() override;

  float GetFOV(TimeValue t) const override { return camera_->GetFOV(t); }
  bool IsOrtho() const override { return camera_->IsOrtho() != FALSE; }
  float GetTDist(TimeValue t) const override { return camera_->GetTDist(t); }
  bool GetManualClip() const override { return camera_->GetManualClip() != 0; }
  float GetClipDist(TimeValue t, ClipPlane which) const override {
    return camera_->GetClipDist(t, which == kNearClip ? CAM_HITHER_CLIP : CAM_YON_CLIP);
  }

 private:
  ::Object* object_;
  ::CameraObject* camera_ = nullptr;
  std::unique_ptr<MaxMesh> mesh_;
};

// One level of a modifier stack.
class MaxDerivedObject final : public MaxAnimatable<host::IDerivedObject> {
 public:
  MaxDerivedObject(::IDerivedObject* derived, MaxObjects& objects)
      : MaxAnimatable(derived, objects), derived_(derived) {}

  host::IDerivedObject* AsDerivedObject() override { return this; }
  bool CanConvertToTriObject() const override;
  host::TriObject* ConvertToTriObject(TimeValue t) override;
  // A stack level is never the result of a conversion.
  void DeleteThis() override {}

  int NumModifiers() const override { return derived_->NumModifiers(); }
  host::Modifier* GetModifier(int index) const override;
  host::Object* GetObjRef() const override;

 private:
  ::IDerivedObject* derived_;
};

class MaxModifier final : public MaxAnimatable<host::Modifier> {
 public:
  using MaxAnimatable::MaxAnimatable;
};

// Anything else the core meets in a parameter or by handle.
class MaxOtherAnimatable final : public MaxAnimatable<host::Animatable> {
 public:
  using MaxAnimatable::MaxAnimatable;
};

// Names and map slots, shared by materials and maps.
template <class Base>
class MaxMtlBase : public MaxAnimatable<Base> {
 public:
  MaxMtlBase(::MtlBase* sdk, MaxObjects& objects)
      : MaxAnimatable<Base>(sdk, objects), mtlBase_(sdk) {}

  std::u16string GetName() const override;
  void SetName(std::u16string_view name) override;
  int NumSubTexmaps() const override { return mtlBase_->NumSubTexmaps(); }
  host::Texmap* GetSubTexmap(int index) const override;
  std::u16string GetSubTexmapSlotName(int index, bool localized) const override {
    return Text(mtlBase_->GetSubTexmapSlotName(index, localized).data());
  }

 protected:
  ::MtlBase* mtlBase_;
};

class MaxMtl final : public MaxMtlBase<host::Mtl>, public host::StdMat2 {
 public:
  MaxMtl(::Mtl* material, MaxObjects& objects);

  int NumSubMtls() const override { return material_->NumSubMtls(); }
  host::Mtl* GetSubMtl(int index) const override;
  host::StdMat2* GetStdMat2() const override {
    return standard_ != nullptr ? const_cast<MaxMtl*>(this) : nullptr;
  }

  host::Color GetDiffuse(TimeValue t) const override { return FromSdk(standard_->GetDiffuse(t)); }
  host::Color GetSpecular(TimeValue t) const override { return FromSdk(standard_->GetSpecular(t)); }
  host::Color GetFilter(TimeValue t) const override { return FromSdk(standard_->GetFilter(t)); }
  float GetShininess(TimeValue t) const override { return standard_->GetShininess(t); }
  float GetShinStr(TimeValue t) const override { return standard_->GetShinStr(t); }
  float GetOpacity(TimeValue t) const override { return standard_->GetOpacity(t); }
  float GetSelfIllum(TimeValue t) const override { return standard_->GetSelfIllum(t); }
  float GetIOR(TimeValue t) const override { return standard_->GetIOR(t); }
  bool GetTwoSided() const override { return standard_->GetTwoSided() != FALSE; }
  bool GetWire() const override { return standard_->GetWire() != FALSE; }
  float GetTexmapAmt(int slotIndex, TimeValue t) const override;
  bool MapEnabled(int slotIndex) const override;

 private:
  // The standard material's map id of a sub-texmap slot, or -1 for a slot it has no id for.
  int MapIdOfSlot(int slotIndex) const;

  ::Mtl* material_;
  ::StdMat2* standard_ = nullptr;
};

class MaxUVGen final : public host::StdUVGen {
 public:
  explicit MaxUVGen(::StdUVGen* uv) : uv_(uv) {}
  float GetUScl(TimeValue t) const override { return uv_->GetUScl(t); }
  float GetVScl(TimeValue t) const override { return uv_->GetVScl(t); }
  float GetUOffs(TimeValue t) const override { return uv_->GetUOffs(t); }
  float GetVOffs(TimeValue t) const override { return uv_->GetVOffs(t); }
  float GetWAng(TimeValue t) const override { return uv_->GetWAng(t); }
  int GetTextureTiling() const override { return uv_->GetTextureTiling(); }
  int GetMapChannel() const override { return uv_->GetMapChannel(); }

 private:
  ::StdUVGen* uv_;
};

class MaxCurve final : public host::ICurve {
 public:
  explicit MaxCurve(::ICurve* curve) : curve_(curve) {}
  float GetValue(TimeValue t, float x) const override { return curve_->GetValue(t, x, TRUE); }

 private:
  ::ICurve* curve_;
};

class MaxCurveCtl final : public host::ICurveCtl {
 public:
  explicit MaxCurveCtl(::ICurveCtl* control);
  int GetNumCurves() const override { return static_cast<int>(curves_.size()); }
  host::ICurve* GetControlCurve(int index) const override;

 private:
  std::vector<std::unique_ptr<MaxCurve>> curves_;  // null entries stand for missing curves
};

class MaxTexmap final : public MaxMtlBase<host::Texmap>, public host::BitmapTex {
 public:
  MaxTexmap(::Texmap* map, MaxObjects& objects);

  host::BitmapTex* GetBitmapTex() const override {
    return bitmap_ != nullptr ? const_cast<MaxTexmap*>(this) : nullptr;
  }
  host::ICurveCtl* GetColorMapCurveCtl(bool rgb) const override {
    return rgb ? rgbCurves_.get() : monoCurves_.get();
  }

  std::u16string GetMapName() const override { return Text(bitmap_->GetMapName()); }
  bool GetBitmapGamma(TimeValue t, float& gamma) const override;
  host::StdUVGen* GetUVGen() const override { return uvGen_.get(); }

 private:
  ::BitmapTex* bitmap_ = nullptr;
  std::unique_ptr<MaxUVGen> uvGen_;
  std::unique_ptr<MaxCurveCtl> monoCurves_, rgbCurves_;
};

// A parameter block; parameters are addressed by declaration index and read by their ids.
class MaxParamBlock final : public host::IParamBlock2, public host::ParamBlockDesc2 {
 public:
  MaxParamBlock(::IParamBlock2* block, MaxObjects& objects);

  const host::ParamBlockDesc2* GetDesc() const override {
    return desc_ != nullptr ? this : nullptr;
  }
  int Count() const override { return desc_->Count(); }
  std::optional<std::u16string_view> GetParamName(int index) const override;
  host::ParamType2 GetParamType(int index) const override;

  int Count(int index) const override;
  bool GetFloat(int index, TimeValue t, float& value, int tabIndex) const override;
  bool GetInt(int index, TimeValue t, int& value, int tabIndex) const override;
  bool GetColor(int index, TimeValue t, host::Color& value, int tabIndex) const override;
  bool GetPoint3(int index, TimeValue t, host::Point3& value, int tabIndex) const override;
  bool GetString(int index, TimeValue t, std::optional<std::u16string>& value,
                 int tabIndex) const override;
  bool GetReference(int index, TimeValue t, host::Animatable*& value, int tabIndex) const override;

 private:
  ParamID Id(int index) const { return desc_->IndextoID(index); }
  int BaseType(int index) const { return GetParamType(index) & ~TYPE_TAB; }

  ::IParamBlock2* block_;
  ::ParamBlockDesc2* desc_;
  MaxObjects& objects_;
  std::vector<std::optional<std::u16string>> names_;  // the internal names, read once
};

// The wrappers of one send, by the SDK object they stand for.
class MaxObjects {
 public:
  host::INode* Node(::INode* node);
  host::Object* ObjectOf(::Object* object);
  host::Modifier* ModifierOf(::Modifier* modifier);
  host::Mtl* Material(::Mtl* material);
  host::Texmap* Map(::Texmap* map);
  // Any animatable, by its super class.
  host::Animatable* Any(::Animatable* animatable);
  host::IParamBlock2* Block(::IParamBlock2* block);

  // A conversion's result, which belongs to the caller until a node takes it.
  MaxObject* Converted(::Object* object);
  // Frees a conversion that no node took, and its wrapper (`converted` is gone afterwards).
  void Release(MaxObject& converted);
  void Clear();

 private:
  template <class Wrapper, class Sdk>
  Wrapper* Find(Sdk* sdk);

  std::unordered_map<const void*, std::unique_ptr<host::Animatable>> animatables_;
  std::unordered_map<const void*, std::unique_ptr<MaxParamBlock>> blocks_;
};

template <class Base>
host::IParamBlock2* MaxAnimatable<Base>::GetParamBlock(int index) const {
  return objects_.Block(sdk_->GetParamBlock(index));
}

}  // namespace orvane::host::max
