// Test-only stand-in for the SDK header of the same name (see README.md).
#pragma once

#include "max.h"

#define CURVE_CONTROL_CLASS_ID Class_ID(0x14585773, 0x483a7dcf)

class ICurve : public ReferenceTarget {
 public:
  virtual float GetValue(TimeValue t, float fX, Interval& ivalid, BOOL UseLookupTable = FALSE) = 0;
  float GetValue(TimeValue t, float fX, BOOL UseLookupTable = FALSE);
};

class ICurveCtl : public ReferenceTarget {
 public:
  virtual int GetNumCurves() = 0;
  virtual ICurve* GetControlCurve(int numCurve) = 0;
};
