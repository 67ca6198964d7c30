// Test-only stand-in for the SDK header of the same name (see README.md).
#pragma once

#include "max.h"

enum ParamType2 : int {
  TYPE_FLOAT = 0,
  TYPE_INT = 1,
  TYPE_RGBA = 2,
  TYPE_POINT3 = 3,
  TYPE_BOOL = 4,
  TYPE_ANGLE = 5,
  TYPE_PCNT_FRAC = 6,
  TYPE_WORLD = 7,
  TYPE_STRING = 8,
  TYPE_FILENAME = 9,
  TYPE_COLOR_CHANNEL = 11,
  TYPE_TIMEVALUE = 12,
  TYPE_RADIOBTN_INDEX = 13,
  TYPE_MTL = 14,
  TYPE_TEXMAP = 15,
  TYPE_BITMAP = 16,
  TYPE_INODE = 17,
  TYPE_REFTARG = 18,
  TYPE_INDEX = 19,
  TYPE_MATRIX3 = 20,
  TYPE_PBLOCK2 = 21,
  TYPE_POINT4 = 22,
  TYPE_FRGBA = 23,
};
#define TYPE_TAB 0x800

struct ParamDef {
  ParamID ID;
  const MCHAR* int_name;
  ParamType2 type;
};

class ParamBlockDesc2 {
 public:
  ParamDef* paramdefs;
  USHORT count;
  USHORT Count();
  const ParamDef* GetParamDefByIndex(const unsigned int i) const;
  ParamID IndextoID(int i);
};

class IParamBlock2 : public ReferenceTarget {
 public:
  virtual ParamBlockDesc2* GetDesc() = 0;
  virtual int Count(ParamID id) = 0;
  virtual BOOL GetValue(ParamID id, TimeValue t, float& v, Interval& ivalid, int tabIndex = 0) = 0;
  virtual BOOL GetValue(ParamID id, TimeValue t, int& v, Interval& ivalid, int tabIndex = 0) = 0;
  virtual BOOL GetValue(ParamID id, TimeValue t, Point3& v, Interval& ivalid, int tabIndex = 0) = 0;
  virtual BOOL GetValue(ParamID id, TimeValue t, Color& v, Interval& ivalid, int tabIndex = 0) = 0;
  virtual BOOL GetValue(ParamID id, TimeValue t, AColor& v, Interval& ivalid, int tabIndex = 0) = 0;
  virtual BOOL GetValue(ParamID id, TimeValue t, const MCHAR*& v, Interval& ivalid,
                        int tabIndex = 0) = 0;
  virtual BOOL GetValue(ParamID id, TimeValue t, Mtl*& v, Interval& ivalid, int tabIndex = 0) = 0;
  virtual BOOL GetValue(ParamID id, TimeValue t, Texmap*& v, Interval& ivalid,
                        int tabIndex = 0) = 0;
  virtual BOOL GetValue(ParamID id, TimeValue t, INode*& v, Interval& ivalid, int tabIndex = 0) = 0;
  virtual BOOL GetValue(ParamID id, TimeValue t, ReferenceTarget*& v, Interval& ivalid,
                        int tabIndex = 0) = 0;
};

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
