// Scene nodes: the hierarchy, names, transforms, targets, objects and materials.
#pragma once

#include <string>
#include <string_view>

#include "host/animatable.h"
#include "host/host_types.h"

namespace orvane::host {

class Mtl;
class Object;

class INode : public Animatable {
 public:
  virtual std::u16string GetName() const = 0;
  virtual void SetName(std::u16string_view name) = 0;

  virtual int NumberOfChildren() const = 0;
  virtual INode* GetChildNode(int index) const = 0;
  // The look-at target node, or null.
  virtual INode* GetTarget() const = 0;

  // World transform at `t`.
  virtual Matrix3 GetNodeTM(TimeValue t) const = 0;

  // The object the node references (what instances share); may be a modifier stack.
  virtual Object* GetObjectRef() const = 0;
  virtual void SetObjectRef(Object* object) = 0;
  // The object at the top of the evaluated pipeline at `t` (hidden nodes included); may be null.
  virtual Object* EvalWorldState(TimeValue t) = 0;

  // May answer null.
  virtual Mtl* GetMtl() const = 0;
};

}  // namespace orvane::host
