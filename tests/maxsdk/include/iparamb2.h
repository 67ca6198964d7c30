// Test-only stand-in for the SDK header of the same name (see README.md).
#pragma once

#include "max.h"

class ClassDesc {
 public:
  virtual ~ClassDesc() = default;
  virtual int IsPublic() = 0;
  virtual void* Create(BOOL loading = FALSE) = 0;
  virtual const MCHAR* ClassName() = 0;
  virtual const MCHAR* NonLocalizedClassName() = 0;
  virtual SClass_ID SuperClassID() = 0;
  virtual Class_ID ClassID() = 0;
  virtual const MCHAR* Category() = 0;
  virtual const MCHAR* InternalName() { return nullptr; }
  virtual HINSTANCE HInstance() { return nullptr; }
  virtual int BeginCreate(Interface*) { return 0; }
  virtual int EndCreate(Interface*) { return 0; }
};

class ClassDesc2 : public ClassDesc {};
