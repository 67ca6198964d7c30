// Materials and maps: names, sub-map slots, sub-materials and the few typed interfaces the core
// reads directly (standard material, bitmap texture, output colour-map curves).
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "host/animatable.h"

namespace orvane::host {

class Texmap;
class Mtl;

// What materials and maps share: a name and a row of map slots.
class MtlBase : public Animatable {
 public:
  virtual std::u16string GetName() const = 0;
  virtual void SetName(std::u16string_view name) = 0;

  virtual int NumSubTexmaps() const = 0;
  // May answer null for an empty slot.
  virtual Texmap* GetSubTexmap(int index) const = 0;
  // The slot's name; `localized` false asks for the untranslated name.
  virtual std::u16string GetSubTexmapSlotName(int index, bool localized) const = 0;
};

// The standard material's typed values, read at a time.
class StdMat2 {
 public:
  virtual ~StdMat2() = default;
  virtual Color GetDiffuse(TimeValue t) const = 0;
  virtual Color GetSpecular(TimeValue t) const = 0;
  virtual Color GetFilter(TimeValue t) const = 0;
  virtual float GetShininess(TimeValue t) const = 0;
  virtual float GetShinStr(TimeValue t) const = 0;
  virtual float GetOpacity(TimeValue t) const = 0;
  virtual float GetSelfIllum(TimeValue t) const = 0;
  virtual float GetIOR(TimeValue t) const = 0;
  virtual bool GetTwoSided() const = 0;
  virtual bool GetWire() const = 0;
  // Per map slot, addressed by sub-texmap index.
  virtual float GetTexmapAmt(int slotIndex, TimeValue t) const = 0;
  virtual bool MapEnabled(int slotIndex) const = 0;
};

class Mtl : public MtlBase {
 public:
  virtual int NumSubMtls() const = 0;
  // May answer null for an empty slot.
  virtual Mtl* GetSubMtl(int index) const = 0;
  // The standard-material interface, or null when the material is not a standard material.
  virtual StdMat2* GetStdMat2() const { return nullptr; }
};

// The texture-coordinate generator of a bitmap map.
class StdUVGen {
 public:
  // Bits of GetTextureTiling().
  static constexpr int U_WRAP = 1, V_WRAP = 2, U_MIRROR = 4, V_MIRROR = 8;

  virtual ~StdUVGen() = default;
  virtual float GetUScl(TimeValue t) const = 0;
  virtual float GetVScl(TimeValue t) const = 0;
  virtual float GetUOffs(TimeValue t) const = 0;
  virtual float GetVOffs(TimeValue t) const = 0;
  // Rotation about W, in radians.
  virtual float GetWAng(TimeValue t) const = 0;
  virtual int GetTextureTiling() const = 0;
  virtual int GetMapChannel() const = 0;
};

// The host's standard image-file map.
class BitmapTex {
 public:
  virtual ~BitmapTex() = default;
  virtual std::u16string GetMapName() const = 0;
  // Whether the map has its image loaded at `t`; the gamma of that image is then `gamma`.
  virtual bool GetBitmapGamma(TimeValue t, float& gamma) const = 0;
  // May answer null.
  virtual StdUVGen* GetUVGen() const = 0;
};

// The x positions at which the core reads a colour-map curve: 0, 1/32, ... 1.
inline constexpr int kCurveSampleCount = 33;
constexpr float CurveSampleX(int index) {
  return static_cast<float>(index) * 0.03125f;
}

// One curve of a curve control.
class ICurve {
 public:
  virtual ~ICurve() = default;
  virtual float GetValue(TimeValue t, float x) const = 0;
};

// A curve control: the colour-map curves of a map's output block.
class ICurveCtl {
 public:
  virtual ~ICurveCtl() = default;
  virtual int GetNumCurves() const = 0;
  // May answer null.
  virtual ICurve* GetControlCurve(int index) const = 0;
};

class Texmap : public MtlBase {
 public:
  // Non-null only for the host's standard bitmap map.
  virtual BitmapTex* GetBitmapTex() const { return nullptr; }
  // The curve control of the output block's colour map: the one-curve control when `rgb` is
  // false, the three-curve control when it is true; null when the map has none.
  virtual ICurveCtl* GetColorMapCurveCtl(bool rgb) const = 0;
};

}  // namespace orvane::host
