// Plain value types shared by the host interface and the core, named after the host's own types.
#pragma once

#include <array>
#include <cstdint>

namespace orvane::host {

// Animation time in ticks, as the host measures it.
using TimeValue = int32_t;
// A host-wide number that identifies one animatable for the lifetime of the scene; 0 means none.
using AnimHandle = uint64_t;
using SClass_ID = uint32_t;

struct Class_ID {
  uint32_t partA = 0;
  uint32_t partB = 0;
  friend bool operator==(const Class_ID&, const Class_ID&) = default;
};

// Super class ids the core tests against.
inline constexpr SClass_ID GEN_DERIVOB_CLASS_ID = 0x2;
inline constexpr SClass_ID GEOMOBJECT_CLASS_ID = 0x10;
inline constexpr SClass_ID CAMERA_CLASS_ID = 0x20;
inline constexpr SClass_ID LIGHT_CLASS_ID = 0x30;
inline constexpr SClass_ID SHAPE_CLASS_ID = 0x40;
inline constexpr SClass_ID HELPER_CLASS_ID = 0x50;
inline constexpr SClass_ID OSM_CLASS_ID = 0x810;
inline constexpr SClass_ID WSM_CLASS_ID = 0x820;
inline constexpr SClass_ID MATERIAL_CLASS_ID = 0xC00;
inline constexpr SClass_ID TEXMAP_CLASS_ID = 0xC10;

inline constexpr Class_ID BMTEX_CLASS_ID{0x240, 0};
inline constexpr Class_ID MULTI_MATERIAL_CLASS_ID{0x200, 0};

// Unit codes understood by GetSystemUnitScale.
enum UnitType : int {
  UNITS_INCHES = 0,
  UNITS_FEET = 1,
  UNITS_MILES = 2,
  UNITS_MILLIMETERS = 3,
  UNITS_CENTIMETERS = 4,
  UNITS_METERS = 5,
  UNITS_KILOMETERS = 6,
};

// Asset kinds understood by the file-resolution service.
enum AssetType : int {
  kBitmapAsset = 1,
  kPhotometricAsset = 3,
};

// Host directory codes for Interface::GetDir. The settings file lives in the user-writable
// scripts folder.
enum DirectoryCode : int {
  APP_USER_SCRIPTS_DIR = 26,
};

// Host log entry types.
enum LogType : int {
  SYSLOG_WARN = 2,
  SYSLOG_INFO = 4,
};

struct Point3 {
  float x = 0, y = 0, z = 0;
  friend bool operator==(const Point3&, const Point3&) = default;
};

// The host's floating colour; alpha, where the host has one, is dropped by the host layer.
struct Color {
  float r = 0, g = 0, b = 0;
  friend bool operator==(const Color&, const Color&) = default;
};

// A rotation: vector part (x, y, z) and scalar part w.
struct Quat {
  float x = 0, y = 0, z = 0, w = 1;
  friend bool operator==(const Quat&, const Quat&) = default;
};

// A 4x3 affine transform stored as rows: rows 0-2 are the basis, row 3 the translation,
// points transform as row vectors (p' = p * M), as in the host.
struct Matrix3 {
  std::array<Point3, 4> rows{Point3{1, 0, 0}, Point3{0, 1, 0}, Point3{0, 0, 1}, Point3{0, 0, 0}};
  Point3 GetRow(int i) const { return rows[static_cast<size_t>(i)]; }
  Point3 GetTrans() const { return rows[3]; }
  friend bool operator==(const Matrix3&, const Matrix3&) = default;
};

}  // namespace orvane::host
