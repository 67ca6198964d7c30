// Test-only stand-in for the SDK header of the same name (see README.md).
#pragma once

#include "max.h"

class IDerivedObject : public Object {
 public:
  virtual int NumModifiers() = 0;
  virtual Modifier* GetModifier(int index) = 0;
  virtual Object* GetObjRef() = 0;
};
