// Test-only stand-in for the SDK header of the same name (see README.md).
#pragma once

using ulong = unsigned long;
using SClass_ID = ulong;

class Class_ID {
 public:
  Class_ID(ulong a, ulong b) : a_(a), b_(b) {}
  ulong PartA() const { return a_; }
  ulong PartB() const { return b_; }
  bool operator==(const Class_ID& other) const { return a_ == other.a_ && b_ == other.b_; }

 private:
  ulong a_, b_;
};

#define UTILITY_CLASS_ID 0x00001020
#define MATERIAL_CLASS_ID 0x00000C00
#define TEXMAP_CLASS_ID 0x00000C10
#define GEOMOBJECT_CLASS_ID 0x00000010
#define CAMERA_CLASS_ID 0x00000020
#define LIGHT_CLASS_ID 0x00000030
#define GEN_DERIVOB_CLASS_ID 0x00000002
#define SHAPE_CLASS_ID 0x00000040
#define HELPER_CLASS_ID 0x00000050
#define OSM_CLASS_ID 0x00000810
#define WSM_CLASS_ID 0x00000820
#define BASENODE_CLASS_ID 0x00000001
#define TEXOUTPUT_CLASS_ID 0x00000C40

#define TRIOBJ_CLASS_ID 0x0009
#define BMTEX_CLASS_ID 0x0000240
#define MULTI_CLASS_ID 0x0000200
#define DMTL_CLASS_ID 0x00000002
#define STDTEXOUT_CLASS_ID 0x0000100

// The 3ds Max 2025 SDK: release 27000, API 66, revision 0.
#define MAX_RELEASE 27000
#define MAX_API_NUM 66
#define MAX_SDK_REV 0
#define VERSION_3DSMAX ((MAX_RELEASE << 16) + (MAX_API_NUM << 8) + MAX_SDK_REV)
