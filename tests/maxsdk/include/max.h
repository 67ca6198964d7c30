// Test-only stand-in for the SDK header of the same name (see README.md): strings, maths, the
// animatable hierarchy, nodes, objects, meshes, materials and the core interface.
#pragma once

#include <windows.h>

#include <string>

#include "plugapi.h"

using MCHAR = wchar_t;
using TimeValue = int;
using MtlID = unsigned short;
using ParamID = short;
using AnimHandle = UINT_PTR;

// The SDK's wide string, as far as the plug-in uses it.
class WStr {
 public:
  WStr() = default;
  WStr(const MCHAR* text) : text_(text != nullptr ? text : L"") {}
  const MCHAR* data() const { return text_.c_str(); }
  operator const MCHAR*() const { return text_.c_str(); }

 private:
  std::wstring text_;
};
using MSTR = WStr;
using TSTR = WStr;

// --- Maths ---

class Point3 {
 public:
  float x = 0, y = 0, z = 0;
  Point3() = default;
  Point3(float ax, float ay, float az) : x(ax), y(ay), z(az) {}
};

class Color {
 public:
  float r = 0, g = 0, b = 0;
};

class AColor {
 public:
  float r = 0, g = 0, b = 0, a = 1;
};

class Quat {
 public:
  float x = 0, y = 0, z = 0, w = 1;
};

class Matrix3 {
 public:
  Matrix3() = default;
  Matrix3(const Point3& u, const Point3& v, const Point3& n, const Point3& t);
  Point3 GetRow(int i) const;
  const Point3& GetTrans() const;

  Point3 rows[4];  // the stand-in's own storage
};

class Interval {
 public:
  Interval() = default;
  Interval(TimeValue start, TimeValue end);
};
#define TIME_NegInfinity TimeValue(0x80000000)
#define TIME_PosInfinity TimeValue(0x7fffffff)
#define FOREVER Interval(TIME_NegInfinity, TIME_PosInfinity)

void DecomposeMatrix(const Matrix3& mat, Point3& p, Quat& q, Point3& s);

#define UNITS_INCHES 0
#define UNITS_FEET 1
#define UNITS_MILES 2
#define UNITS_MILLIMETERS 3
#define UNITS_CENTIMETERS 4
#define UNITS_METERS 5
#define UNITS_KILOMETERS 6
double GetSystemUnitScale(int type);

// --- Animatables ---

class IParamBlock2;

class Animatable {
 public:
  virtual ~Animatable() = default;
  virtual void GetClassName(MSTR& s, bool localized) const;
  virtual SClass_ID SuperClassID() = 0;
  virtual Class_ID ClassID();
  virtual int NumParamBlocks() { return 0; }
  virtual IParamBlock2* GetParamBlock(int) { return nullptr; }
  virtual void DeleteThis();
  static AnimHandle GetHandleByAnim(Animatable* anim);
  static Animatable* GetAnimByHandle(AnimHandle handle);
};

class ReferenceMaker : public Animatable {
 public:
  virtual class ReferenceTarget* GetReference(int i);
};
class ReferenceTarget : public ReferenceMaker {};
class BaseObject : public ReferenceTarget {};

// --- Meshes and objects ---

class Face {
 public:
  DWORD v[3];
  MtlID getMatID();
  MtlID matID = 0;  // the stand-in's own storage
};

class TVFace {
 public:
  DWORD t[3];
  void setTVerts(DWORD a, DWORD b, DWORD c);
};

class Mesh {
 public:
  int numVerts = 0, numFaces = 0, numCVerts = 0;
  Point3* verts = nullptr;
  Face* faces = nullptr;
  Point3* vertCol = nullptr;
  TVFace* vcFace = nullptr;
  int getNumVerts() const;
  Point3& getVert(int i);
  int getNumFaces() const;
  BOOL setNumVertCol(int ct, BOOL keep = FALSE);
  int getNumVertCol() const;
  BOOL setNumVCFaces(int ct, BOOL keep = FALSE, int oldCt = 0);
  void InvalidateGeomCache();
};

class Object : public BaseObject {
 public:
  virtual int CanConvertToType(Class_ID obtype);
  virtual Object* ConvertToType(TimeValue t, Class_ID obtype);
};

class ObjectState {
 public:
  Object* obj;
};

class CameraObject : public Object {
 public:
  virtual BOOL IsOrtho() = 0;
  virtual float GetFOV(TimeValue t, Interval& valid) = 0;
  float GetFOV(TimeValue t);
  virtual float GetTDist(TimeValue t, Interval& valid) = 0;
  float GetTDist(TimeValue t);
  virtual int GetManualClip() = 0;
  virtual float GetClipDist(TimeValue t, int which, Interval& valid) = 0;
  float GetClipDist(TimeValue t, int which);
};
#define CAM_HITHER_CLIP 1
#define CAM_YON_CLIP 2

class Modifier : public BaseObject {};

// --- Materials and maps ---

class Texmap;

class MtlBase : public ReferenceTarget {
 public:
  MSTR& GetName();
  void SetName(MSTR s);
  MSTR name;  // the stand-in's own storage
  virtual int NumSubTexmaps();
  virtual Texmap* GetSubTexmap(int i);
  virtual MSTR GetSubTexmapSlotName(int i, bool localized);
};

class Mtl : public MtlBase {
 public:
  virtual int NumSubMtls();
  virtual Mtl* GetSubMtl(int i);
};

class Texmap : public MtlBase {};

// --- Nodes ---

class INode : public ReferenceTarget {
 public:
  virtual int NumberOfChildren() = 0;
  virtual INode* GetChildNode(int i) = 0;
  virtual const ObjectState& EvalWorldState(TimeValue time, BOOL evalHidden = TRUE) = 0;
  virtual Mtl* GetMtl() = 0;
  virtual const MCHAR* GetName() = 0;
  virtual void SetName(const MCHAR* s) = 0;
  virtual Object* GetObjectRef() = 0;
  virtual void SetObjectRef(Object* o) = 0;
  virtual Matrix3 GetNodeTM(TimeValue t, Interval* valid = nullptr) = 0;
  virtual INode* GetTarget() = 0;
};

// --- The core interface ---

#define SYSLOG_ERROR 0x1
#define SYSLOG_WARN 0x2
#define SYSLOG_INFO 0x4
#define SYSLOG_DEBUG 0x8
#define NO_DIALOG FALSE

class LogSys {
 public:
  virtual ~LogSys() = default;
  virtual void LogEntry(DWORD type, BOOL dialogue, const MCHAR* title, const MCHAR* format,
                        ...) = 0;
};

#define APP_USER_SCRIPTS_DIR 26

class Interface {
 public:
  virtual ~Interface() = default;
  virtual HWND GetMAXHWnd() const = 0;
  virtual TimeValue GetTime() = 0;
  virtual INode* GetRootNode() = 0;
  virtual const MCHAR* GetDir(int which) = 0;
  virtual MSTR& GetCurFileName() = 0;
  virtual MSTR& GetCurFilePath() = 0;
  virtual BOOL ExportToFile(const MCHAR* name, BOOL suppressPrompts = FALSE, DWORD options = 0,
                            Class_ID* exporterID = nullptr) = 0;
  virtual Point3 GetBackGround(TimeValue t, Interval& valid) = 0;
  virtual BOOL GetUseEnvironmentMap() = 0;
  virtual Texmap* GetEnvironmentMap() = 0;
  virtual LogSys* Log() = 0;
};

Interface* GetCOREInterface();
