// The host interface's constants carry the host SDK's own values, so that the 3ds Max adapter
// passes them through unchanged. The right-hand column is what the SDK reference gives.
#include <gtest/gtest.h>

#include "host/animatable.h"
#include "host/host_types.h"

namespace orvane::host {
namespace {

TEST(HostConstants, EqualTheSdkValues) {
  const struct {
    const char* name;
    long long ours, sdk;
  } cases[] = {
      {"GEN_DERIVOB_CLASS_ID", GEN_DERIVOB_CLASS_ID, 0x000002},
      {"GEOMOBJECT_CLASS_ID", GEOMOBJECT_CLASS_ID, 0x000010},
      {"CAMERA_CLASS_ID", CAMERA_CLASS_ID, 0x000020},
      {"LIGHT_CLASS_ID", LIGHT_CLASS_ID, 0x000030},
      {"MATERIAL_CLASS_ID", MATERIAL_CLASS_ID, 0x000C00},
      {"TEXMAP_CLASS_ID", TEXMAP_CLASS_ID, 0x000C10},
      {"BMTEX_CLASS_ID part A", BMTEX_CLASS_ID.partA, 0x240},
      {"BMTEX_CLASS_ID part B", BMTEX_CLASS_ID.partB, 0},
      {"MULTI_CLASS_ID part A", MULTI_MATERIAL_CLASS_ID.partA, 0x200},
      {"MULTI_CLASS_ID part B", MULTI_MATERIAL_CLASS_ID.partB, 0},
      {"TYPE_FLOAT", TYPE_FLOAT, 0},
      {"TYPE_INT", TYPE_INT, 1},
      {"TYPE_RGBA", TYPE_RGBA, 2},
      {"TYPE_POINT3", TYPE_POINT3, 3},
      {"TYPE_BOOL", TYPE_BOOL, 4},
      {"TYPE_ANGLE", TYPE_ANGLE, 5},
      {"TYPE_PCNT_FRAC", TYPE_PCNT_FRAC, 6},
      {"TYPE_WORLD", TYPE_WORLD, 7},
      {"TYPE_STRING", TYPE_STRING, 8},
      {"TYPE_FILENAME", TYPE_FILENAME, 9},
      {"TYPE_MTL", TYPE_MTL, 14},
      {"TYPE_TEXMAP", TYPE_TEXMAP, 15},
      {"TYPE_BITMAP", TYPE_BITMAP, 16},
      {"TYPE_INODE", TYPE_INODE, 17},
      {"TYPE_REFTARG", TYPE_REFTARG, 18},
      {"TYPE_INDEX", TYPE_INDEX, 19},
      {"TYPE_MATRIX3", TYPE_MATRIX3, 20},
      {"TYPE_FRGBA", TYPE_FRGBA, 23},
      {"TYPE_FLOAT_TAB", TYPE_FLOAT_TAB, 0x800},
      {"TYPE_INT_TAB", TYPE_INT_TAB, 0x801},
      {"TYPE_RGBA_TAB", TYPE_RGBA_TAB, 0x802},
      {"TYPE_POINT3_TAB", TYPE_POINT3_TAB, 0x803},
      {"TYPE_BOOL_TAB", TYPE_BOOL_TAB, 0x804},
      {"TYPE_STRING_TAB", TYPE_STRING_TAB, 0x808},
      {"TYPE_FRGBA_TAB", TYPE_FRGBA_TAB, 0x817},
      {"kBitmapAsset", kBitmapAsset, 1},
      {"kPhotometricAsset", kPhotometricAsset, 3},
      {"UNITS_INCHES", UNITS_INCHES, 0},
      {"UNITS_FEET", UNITS_FEET, 1},
      {"UNITS_MILES", UNITS_MILES, 2},
      {"UNITS_MILLIMETERS", UNITS_MILLIMETERS, 3},
      {"UNITS_CENTIMETERS", UNITS_CENTIMETERS, 4},
      {"UNITS_METERS", UNITS_METERS, 5},
      {"UNITS_KILOMETERS", UNITS_KILOMETERS, 6},
      {"APP_USER_SCRIPTS_DIR", APP_USER_SCRIPTS_DIR, 26},
      {"SYSLOG_WARN", SYSLOG_WARN, 0x2},
      {"SYSLOG_INFO", SYSLOG_INFO, 0x4},
  };
  for (const auto& c : cases)
    EXPECT_EQ(c.ours, c.sdk) << c.name;
}

}  // namespace
}  // namespace orvane::host
