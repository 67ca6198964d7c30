// Test-only stand-in for the SDK header of the same name (see README.md).
#pragma once

#include "max.h"

class IUtil;

class UtilityObj {
 public:
  virtual ~UtilityObj() = default;
  virtual void BeginEditParams(Interface* ip, IUtil* iu) = 0;
  virtual void EndEditParams(Interface* ip, IUtil* iu) = 0;
  virtual void SelectionSetChanged(Interface*, IUtil*) {}
  virtual void DeleteThis() = 0;
  virtual void SetStartupParam(MSTR) {}
};
