// Bodies for the stand-ins' out-of-line SDK functions, so the adapter can run in a test over
// scenes the test builds from SDK-shaped objects. A model of the SDK as our notes describe it,
// not the SDK.
#include "tests/maxsdk/fake_sdk.h"

#include <map>

// --- Maths ---

Matrix3::Matrix3(const Point3& u, const Point3& v, const Point3& n, const Point3& t)
    : rows{u, v, n, t} {}
Point3 Matrix3::GetRow(int i) const {
  return rows[i];
}
const Point3& Matrix3::GetTrans() const {
  return rows[3];
}
Interval::Interval(TimeValue, TimeValue) {}

void DecomposeMatrix(const Matrix3& mat, Point3& p, Quat& q, Point3& s) {
  p = mat.rows[3];
  s = Point3(1, 1, 1);
  q = Quat{0.5f, 0, 0, 0.5f};  // a mark the test recognises
}

double GetSystemUnitScale(int type) {
  return type == UNITS_METERS ? 0.01 : -1.0;
}

// --- Animatables ---

namespace {
std::map<Animatable*, AnimHandle>& Handles() {
  static std::map<Animatable*, AnimHandle> handles;
  return handles;
}
}  // namespace

void Animatable::GetClassName(MSTR& s, bool) const {
  s = L"Animatable";
}
Class_ID Animatable::ClassID() {
  return Class_ID(0, 0);
}
void Animatable::DeleteThis() {
  delete this;
}
AnimHandle Animatable::GetHandleByAnim(Animatable* anim) {
  auto [found, added] = Handles().emplace(anim, Handles().size() + 1);
  return found->second;
}
Animatable* Animatable::GetAnimByHandle(AnimHandle handle) {
  for (const auto& [anim, known] : Handles()) {
    if (known == handle) return anim;
  }
  return nullptr;
}
ReferenceTarget* ReferenceMaker::GetReference(int) {
  return nullptr;
}

// --- Meshes and objects ---

MtlID Face::getMatID() {
  return matID;
}
void TVFace::setTVerts(DWORD a, DWORD b, DWORD c) {
  t[0] = a;
  t[1] = b;
  t[2] = c;
}
int Mesh::getNumVerts() const {
  return numVerts;
}
Point3& Mesh::getVert(int i) {
  return verts[i];
}
int Mesh::getNumFaces() const {
  return numFaces;
}
BOOL Mesh::setNumVertCol(int ct, BOOL) {
  delete[] vertCol;
  vertCol = new Point3[static_cast<size_t>(ct)];
  numCVerts = ct;
  return TRUE;
}
int Mesh::getNumVertCol() const {
  return numCVerts;
}
BOOL Mesh::setNumVCFaces(int ct, BOOL, int) {
  delete[] vcFace;
  vcFace = new TVFace[static_cast<size_t>(ct)];
  return TRUE;
}
void Mesh::InvalidateGeomCache() {}

int Object::CanConvertToType(Class_ID) {
  return 0;
}
Object* Object::ConvertToType(TimeValue, Class_ID) {
  return nullptr;
}
float CameraObject::GetFOV(TimeValue t) {
  Interval valid;
  return GetFOV(t, valid);
}
float CameraObject::GetTDist(TimeValue t) {
  Interval valid;
  return GetTDist(t, valid);
}
float CameraObject::GetClipDist(TimeValue t, int which) {
  Interval valid;
  return GetClipDist(t, which, valid);
}
Class_ID triObjectClassID(TRIOBJ_CLASS_ID, 0);

// --- Materials and maps ---

MSTR& MtlBase::GetName() {
  return name;
}
void MtlBase::SetName(MSTR s) {
  name = s;
}
int MtlBase::NumSubTexmaps() {
  return 0;
}
Texmap* MtlBase::GetSubTexmap(int) {
  return nullptr;
}
MSTR MtlBase::GetSubTexmapSlotName(int, bool) {
  return MSTR();
}
int Mtl::NumSubMtls() {
  return 0;
}
Mtl* Mtl::GetSubMtl(int) {
  return nullptr;
}
int UVGen::GetMapChannel() {
  return 1;
}
Bitmap* BitmapTex::GetBitmap(TimeValue) {
  return nullptr;
}
BitmapStorage* Bitmap::Storage() {
  return &storage;
}
float BitmapStorage::Gamma() const {
  return gamma;
}
float ICurve::GetValue(TimeValue t, float fX, BOOL useLookupTable) {
  Interval valid;
  return GetValue(t, fX, valid, useLookupTable);
}

// --- Parameter blocks ---

USHORT ParamBlockDesc2::Count() {
  return count;
}
const ParamDef* ParamBlockDesc2::GetParamDefByIndex(const unsigned int i) const {
  return i < count ? &paramdefs[i] : nullptr;
}
ParamID ParamBlockDesc2::IndextoID(int i) {
  return paramdefs[i].ID;
}

// --- Scripts and files ---

FakeScriptEngine gFakeScripts;
IFileResolutionManager* gFakeResolver = nullptr;

FPValue::FPValue() : type(TYPE_INT), s(nullptr) {}
FPValue::~FPValue() {
  if (type == TYPE_TSTR) delete tstr;
}

BOOL ExecuteMAXScriptScript(const MCHAR* s, MAXScript::ScriptSource, BOOL quietErrors, FPValue* fpv,
                            BOOL) {
  return gFakeScripts(s, quietErrors != FALSE, fpv) ? TRUE : FALSE;
}

IFileResolutionManager* IFileResolutionManager::GetInstance() {
  return gFakeResolver;
}
