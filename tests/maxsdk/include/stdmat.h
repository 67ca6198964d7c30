// Test-only stand-in for the SDK header of the same name (see README.md).
#pragma once

#include "bitmap.h"
#include "max.h"

#define ID_AM 0
#define ID_DI 1
#define ID_SP 2
#define ID_SH 3
#define ID_SS 4
#define ID_SI 5
#define ID_OP 6
#define ID_FI 7
#define ID_BU 8
#define ID_RL 9
#define ID_RR 10
#define ID_DP 11
#define NTEXMAPS 12

class StdMat : public Mtl {
 public:
  virtual BOOL GetTwoSided() = 0;
  virtual BOOL GetWire() = 0;
  virtual Color GetDiffuse(TimeValue t) = 0;
  virtual Color GetSpecular(TimeValue t) = 0;
  virtual Color GetFilter(TimeValue t) = 0;
  virtual float GetShininess(TimeValue t) = 0;
  virtual float GetShinStr(TimeValue t) = 0;
  virtual float GetSelfIllum(TimeValue t) = 0;
  virtual float GetOpacity(TimeValue t) = 0;
  virtual float GetIOR(TimeValue t) = 0;
  virtual BOOL MapEnabled(int id) = 0;
  virtual float GetTexmapAmt(int id, TimeValue t) = 0;
};

class StdMat2 : public StdMat {
 public:
  virtual long StdIDToChannel(long id) = 0;
};

class UVGen : public MtlBase {
 public:
  virtual int GetTextureTiling() = 0;
  virtual int GetMapChannel();
};

class StdUVGen : public UVGen {
 public:
  virtual float GetUScl(TimeValue t) = 0;
  virtual float GetVScl(TimeValue t) = 0;
  virtual float GetUOffs(TimeValue t) = 0;
  virtual float GetVOffs(TimeValue t) = 0;
  virtual float GetWAng(TimeValue t) = 0;
};

class TextureOutput : public MtlBase {};

class BitmapTex : public Texmap {
 public:
  virtual const MCHAR* GetMapName() = 0;
  virtual StdUVGen* GetUVGen() = 0;
  virtual TextureOutput* GetTexout() = 0;
  virtual Bitmap* GetBitmap(TimeValue t);
};
