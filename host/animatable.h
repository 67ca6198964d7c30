// Animatables and their parameter blocks: how the core reads any host object's named parameters.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/host_types.h"

namespace orvane::host {

class IParamBlock2;

// Parameter type codes, with the host's numbering.
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
  TYPE_MTL = 14,
  TYPE_TEXMAP = 15,
  TYPE_BITMAP = 16,
  TYPE_INODE = 17,
  TYPE_REFTARG = 18,
  TYPE_INDEX = 19,
  TYPE_MATRIX3 = 20,
  TYPE_FRGBA = 23,
  TYPE_TAB = 0x800,  // or-ed onto a base type for a table parameter
  TYPE_FLOAT_TAB = TYPE_FLOAT | TYPE_TAB,
  TYPE_INT_TAB = TYPE_INT | TYPE_TAB,
  TYPE_RGBA_TAB = TYPE_RGBA | TYPE_TAB,
  TYPE_POINT3_TAB = TYPE_POINT3 | TYPE_TAB,
  TYPE_BOOL_TAB = TYPE_BOOL | TYPE_TAB,
  TYPE_STRING_TAB = TYPE_STRING | TYPE_TAB,
  TYPE_FRGBA_TAB = TYPE_FRGBA | TYPE_TAB,
};

// Anything in the scene graph: nodes, objects, modifiers, materials, maps.
class Animatable {
 public:
  virtual ~Animatable() = default;

  // The host-wide handle (GetHandleByAnim); 0 when the host gives none.
  virtual AnimHandle GetHandle() const = 0;
  // The class name as the host's scripts know it, never translated.
  virtual std::u16string GetClassName() const = 0;
  virtual Class_ID ClassID() const = 0;
  virtual SClass_ID SuperClassID() const = 0;

  virtual int NumParamBlocks() const = 0;
  // May answer null for an index that has no block.
  virtual IParamBlock2* GetParamBlock(int index) const = 0;
};

// Declarations of a block's parameters, in declaration order.
class ParamBlockDesc2 {
 public:
  virtual ~ParamBlockDesc2() = default;
  virtual int Count() const = 0;
  // The internal (script) name of parameter `index`; nullopt when the host has none.
  virtual std::optional<std::u16string_view> GetParamName(int index) const = 0;
  virtual ParamType2 GetParamType(int index) const = 0;
};

// One parameter block. Parameters are addressed by declaration index; `tabIndex` selects the
// element of a table parameter and is 0 for plain parameters. Each getter answers false when the
// parameter cannot be read as that type.
class IParamBlock2 {
 public:
  virtual ~IParamBlock2() = default;
  // May answer null.
  virtual const ParamBlockDesc2* GetDesc() const = 0;

  // Element count of a table parameter.
  virtual int Count(int index) const = 0;

  // Float-like types (float, angle, percent, world) in the host's internal units.
  virtual bool GetFloat(int index, TimeValue t, float& value, int tabIndex = 0) const = 0;
  // Integer, index and boolean types (a boolean reads as its stored integer).
  virtual bool GetInt(int index, TimeValue t, int& value, int tabIndex = 0) const = 0;
  // RGBA and FRGBA types; alpha is dropped.
  virtual bool GetColor(int index, TimeValue t, Color& value, int tabIndex = 0) const = 0;
  virtual bool GetPoint3(int index, TimeValue t, Point3& value, int tabIndex = 0) const = 0;
  // String and file-name types; a null host string reads as nullopt.
  virtual bool GetString(int index, TimeValue t, std::optional<std::u16string>& value,
                         int tabIndex = 0) const = 0;
  // Material, texmap, node and reference-target types; the target may be null.
  virtual bool GetReference(int index, TimeValue t, Animatable*& value, int tabIndex = 0) const = 0;
};

}  // namespace orvane::host
