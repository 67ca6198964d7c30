// The SDK constants the 3ds Max adapter names, as our stand-in declarations give them, against
// the values of the SDK reference (the right-hand column). The host interface's own constants are
// held to the same column by host_constants_test.cpp, so the adapter passes them through as
// they are.
#include <gtest/gtest.h>

// clang-format off
#include <max.h>
#include <iparamb2.h>
#include <triobj.h>
#include <stdmat.h>
#include <icurvctl.h>
#include <IFileResolutionManager.h>
#include <maxscript/maxscript.h>
// clang-format on

namespace {

TEST(SdkStandIns, CarryTheSdkValues) {
  const struct {
    const char* name;
    long long standIn, sdk;
  } cases[] = {
      {"GEN_DERIVOB_CLASS_ID", GEN_DERIVOB_CLASS_ID, 0x000002},
      {"GEOMOBJECT_CLASS_ID", GEOMOBJECT_CLASS_ID, 0x000010},
      {"CAMERA_CLASS_ID", CAMERA_CLASS_ID, 0x000020},
      {"LIGHT_CLASS_ID", LIGHT_CLASS_ID, 0x000030},
      {"MATERIAL_CLASS_ID", MATERIAL_CLASS_ID, 0x000C00},
      {"TEXMAP_CLASS_ID", TEXMAP_CLASS_ID, 0x000C10},
      {"UTILITY_CLASS_ID", UTILITY_CLASS_ID, 0x001020},
      {"TEXOUTPUT_CLASS_ID", TEXOUTPUT_CLASS_ID, 0x000C40},
      {"BMTEX_CLASS_ID", BMTEX_CLASS_ID, 0x240},
      {"MULTI_CLASS_ID", MULTI_CLASS_ID, 0x200},
      {"DMTL_CLASS_ID", DMTL_CLASS_ID, 0x2},
      {"STDTEXOUT_CLASS_ID", STDTEXOUT_CLASS_ID, 0x100},
      {"TRIOBJ_CLASS_ID", TRIOBJ_CLASS_ID, 0x9},
      {"CURVE_CONTROL_CLASS_ID part A", CURVE_CONTROL_CLASS_ID.PartA(), 0x14585773},
      {"CURVE_CONTROL_CLASS_ID part B", CURVE_CONTROL_CLASS_ID.PartB(), 0x483a7dcf},
      {"TYPE_FLOAT", TYPE_FLOAT, 0},
      {"TYPE_RGBA", TYPE_RGBA, 2},
      {"TYPE_STRING", TYPE_STRING, 8},
      {"TYPE_MTL", TYPE_MTL, 14},
      {"TYPE_TEXMAP", TYPE_TEXMAP, 15},
      {"TYPE_INODE", TYPE_INODE, 17},
      {"TYPE_REFTARG", TYPE_REFTARG, 18},
      {"TYPE_FRGBA", TYPE_FRGBA, 23},
      {"TYPE_TAB", TYPE_TAB, 0x800},
      {"TYPE_TSTR", TYPE_TSTR, 57},
      {"TYPE_TSTR_BR", TYPE_TSTR_BR, 0x1039},
      {"TYPE_TSTR_BV", TYPE_TSTR_BV, 0x2039},
      {"kBitmapAsset", MaxSDK::AssetManagement::kBitmapAsset, 1},
      {"kPhotometricAsset", MaxSDK::AssetManagement::kPhotometricAsset, 3},
      {"UNITS_INCHES", UNITS_INCHES, 0},
      {"UNITS_CENTIMETERS", UNITS_CENTIMETERS, 4},
      {"UNITS_METERS", UNITS_METERS, 5},
      {"UNITS_KILOMETERS", UNITS_KILOMETERS, 6},
      {"APP_USER_SCRIPTS_DIR", APP_USER_SCRIPTS_DIR, 26},
      {"SYSLOG_WARN", SYSLOG_WARN, 0x2},
      {"SYSLOG_INFO", SYSLOG_INFO, 0x4},
      {"CAM_HITHER_CLIP", CAM_HITHER_CLIP, 1},
      {"CAM_YON_CLIP", CAM_YON_CLIP, 2},
      {"ID_DI", ID_DI, 1},
      {"ID_BU", ID_BU, 8},
      {"NTEXMAPS", NTEXMAPS, 12},
  };
  for (const auto& c : cases)
    EXPECT_EQ(c.standIn, c.sdk) << c.name;
}

}  // namespace
