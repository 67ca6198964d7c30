// Scene objects: geometry, modifier stacks, triangle meshes and cameras.
#pragma once

#include <array>
#include <cstdint>

#include "host/animatable.h"

namespace orvane::host {

class IDerivedObject;
class GenCamera;
class TriObject;

struct MeshFace {
  std::array<int, 3> v{0, 0, 0};
  uint16_t matId = 0;  // zero-based, as stored
};

// A triangle mesh, including its vertex-colour channel (map channel 0).
class Mesh {
 public:
  virtual ~Mesh() = default;
  virtual int GetNumVerts() const = 0;
  virtual Point3 GetVert(int index) const = 0;
  virtual int GetNumFaces() const = 0;
  virtual MeshFace GetFace(int index) const = 0;

  virtual int GetNumVertCol() const = 0;
  virtual Point3 GetVertCol(int index) const = 0;
  virtual int GetNumVCFaces() const = 0;
  virtual std::array<int, 3> GetVCFace(int face) const = 0;

  virtual void SetNumVertCol(int count) = 0;
  virtual void SetVertCol(int index, Point3 color) = 0;
  virtual void SetNumVCFaces(int count) = 0;
  virtual void SetVCFace(int face, std::array<int, 3> colorIndices) = 0;
  virtual void InvalidateGeomCache() = 0;
};

class Object : public Animatable {
 public:
  // Non-null when this object is a modifier stack level (super class GEN_DERIVOB_CLASS_ID).
  virtual IDerivedObject* AsDerivedObject() { return nullptr; }
  // Non-null for camera objects.
  virtual GenCamera* AsCamera() { return nullptr; }

  virtual bool CanConvertToTriObject() const = 0;
  // Answers this object when it already is a triangle mesh, otherwise a new object that the
  // caller owns: it either hands it to INode::SetObjectRef or releases it with DeleteThis.
  // Null when the object cannot be converted.
  virtual TriObject* ConvertToTriObject(TimeValue t) = 0;
  // Releases an object made by ConvertToTriObject that no node took.
  virtual void DeleteThis() = 0;
};

class TriObject : public Object {
 public:
  virtual Mesh& GetMesh() = 0;
};

// A modifier on a stack.
class Modifier : public Animatable {};

// One level of a modifier stack: its modifiers (index 0 on top) over the object it wraps.
class IDerivedObject : public Object {
 public:
  virtual int NumModifiers() const = 0;
  // May answer null for an empty slot.
  virtual Modifier* GetModifier(int index) const = 0;
  virtual Object* GetObjRef() const = 0;
};

class GenCamera {
 public:
  enum ClipPlane : int { kNearClip = 0, kFarClip = 1 };

  virtual ~GenCamera() = default;
  // Horizontal field of view in radians.
  virtual float GetFOV(TimeValue t) const = 0;
  virtual bool IsOrtho() const = 0;
  virtual float GetTDist(TimeValue t) const = 0;
  virtual bool GetManualClip() const = 0;
  virtual float GetClipDist(TimeValue t, ClipPlane which) const = 0;
};

}  // namespace orvane::host
