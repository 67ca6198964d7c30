// The 3ds Max adapter over SDK-shaped objects built by the test (tests/maxsdk/fake_sdk.*): a
// snapshot taken through the adapter shows what the core reads, and the script, log and
// conversion rules hold.
#include <gtest/gtest.h>

#include <cstdarg>
#include <nlohmann/json.hpp>

#include "host/memory/scene_file.h"
#include "host/memory/scene_snapshot.h"
// After the host's headers: the SDK's macros carry some of their names.
#include "host/max/max_scene.h"
#include "tests/maxsdk/fake_sdk.h"

namespace {

// Class names are overridden as GetClassNameW: windows.h renames the SDK's GetClassName for the
// SDK's own headers, and the adapter's header has removed the rename since.

using nlohmann::json;
using orvane::host::max::MaxScene;

MSTR Name(const wchar_t* text) {
  return MSTR(text);
}

class FakeLog final : public LogSys {
 public:
  std::wstring format, text;
  void LogEntry(DWORD, BOOL, const MCHAR*, const MCHAR* entryFormat, ...) override {
    format = entryFormat;
    va_list args;
    va_start(args, entryFormat);
    text = va_arg(args, const wchar_t*);
    va_end(args);
  }
};

class FakeBlock final : public IParamBlock2 {
 public:
  ParamBlockDesc2 desc{};
  std::vector<ParamDef> defs;
  float glossiness = 0.25f;
  AColor tint{0.1f, 0.2f, 0.3f, 0.9f};
  Texmap* map = nullptr;
  INode* node = nullptr;

  FakeBlock() {
    // Ids that differ from the declaration order, as they may in the SDK.
    defs = {{107, L"glossiness", TYPE_FLOAT}, {103, L"tint", TYPE_FRGBA},
            {101, L"note", TYPE_STRING},      {105, L"map", TYPE_TEXMAP},
            {102, L"owner", TYPE_INODE},      {104, nullptr, TYPE_TIMEVALUE}};
    desc.paramdefs = defs.data();
    desc.count = static_cast<USHORT>(defs.size());
  }
  ParamBlockDesc2* GetDesc() override { return &desc; }
  int Count(ParamID) override { return 1; }
  BOOL GetValue(ParamID id, TimeValue, float& v, Interval&, int) override {
    v = glossiness;
    return id == 107;
  }
  BOOL GetValue(ParamID, TimeValue, int&, Interval&, int) override { return FALSE; }
  BOOL GetValue(ParamID, TimeValue, Point3&, Interval&, int) override { return FALSE; }
  BOOL GetValue(ParamID, TimeValue, Color&, Interval&, int) override { return FALSE; }
  BOOL GetValue(ParamID id, TimeValue, AColor& v, Interval&, int) override {
    v = tint;
    return id == 103;
  }
  BOOL GetValue(ParamID id, TimeValue, const MCHAR*& v, Interval&, int) override {
    v = nullptr;
    return id == 101;
  }
  BOOL GetValue(ParamID, TimeValue, Mtl*&, Interval&, int) override { return FALSE; }
  BOOL GetValue(ParamID id, TimeValue, Texmap*& v, Interval&, int) override {
    v = map;
    return id == 105;
  }
  BOOL GetValue(ParamID id, TimeValue, INode*& v, Interval&, int) override {
    v = node;
    return id == 102;
  }
  BOOL GetValue(ParamID, TimeValue, ReferenceTarget*&, Interval&, int) override { return FALSE; }
  SClass_ID SuperClassID() override { return 0x82; }
};

class FakeCurve final : public ICurve {
 public:
  float GetValue(TimeValue, float x, Interval&, BOOL) override { return 1 - x; }
  SClass_ID SuperClassID() override { return 0; }
};

class FakeCurveCtl final : public ICurveCtl {
 public:
  std::vector<ICurve*> curves;
  int GetNumCurves() override { return static_cast<int>(curves.size()); }
  ICurve* GetControlCurve(int i) override { return curves[static_cast<size_t>(i)]; }
  Class_ID ClassID() override { return CURVE_CONTROL_CLASS_ID; }
  SClass_ID SuperClassID() override { return 0; }
};

class FakeTexout final : public TextureOutput {
 public:
  FakeCurveCtl rgb, mono;
  Class_ID ClassID() override { return Class_ID(STDTEXOUT_CLASS_ID, 0); }
  SClass_ID SuperClassID() override { return TEXOUTPUT_CLASS_ID; }
  ReferenceTarget* GetReference(int i) override {
    return i == 1 ? &rgb : i == 2 ? static_cast<ReferenceTarget*>(&mono) : nullptr;
  }
};

class FakeUV final : public StdUVGen {
 public:
  float GetUScl(TimeValue) override { return 2; }
  float GetVScl(TimeValue) override { return 3; }
  float GetUOffs(TimeValue) override { return 0.5f; }
  float GetVOffs(TimeValue) override { return 0; }
  float GetWAng(TimeValue) override { return 0.25f; }
  int GetTextureTiling() override { return 5; }
  int GetMapChannel() override { return 2; }
  SClass_ID SuperClassID() override { return 0; }
};

class FakeBitmap final : public BitmapTex {
 public:
  FakeUV uv;
  FakeTexout output;
  Bitmap image;
  FakeCurve curve;
  FakeBitmap() {
    name = L"Wood";
    image.storage.gamma = 2.2f;
    output.rgb.curves = {&curve, nullptr, &curve};
    output.mono.curves = {&curve};
  }
  const MCHAR* GetMapName() override { return L"C:\\maps\\wood.png"; }
  StdUVGen* GetUVGen() override { return &uv; }
  TextureOutput* GetTexout() override { return &output; }
  Bitmap* GetBitmap(TimeValue) override { return &image; }
  Class_ID ClassID() override { return Class_ID(BMTEX_CLASS_ID, 0); }
  SClass_ID SuperClassID() override { return TEXMAP_CLASS_ID; }
  void GetClassNameW(MSTR& s, bool localized) const override {
    s = localized ? L"Bitmap (translated)" : L"Bitmap";
  }
};

class FakeStandard final : public StdMat2 {
 public:
  FakeBitmap* diffuseMap = nullptr;
  FakeBlock block;
  FakeStandard() { name = L"Std"; }
  Class_ID ClassID() override { return Class_ID(DMTL_CLASS_ID, 0); }
  SClass_ID SuperClassID() override { return MATERIAL_CLASS_ID; }
  void GetClassNameW(MSTR& s, bool) const override { s = L"Standardmaterial"; }
  int NumParamBlocks() override { return 2; }
  IParamBlock2* GetParamBlock(int i) override { return i == 0 ? &block : nullptr; }
  int NumSubTexmaps() override { return 2; }
  Texmap* GetSubTexmap(int i) override { return i == 0 ? diffuseMap : nullptr; }
  MSTR GetSubTexmapSlotName(int i, bool localized) override {
    if (localized) return Name(L"(translated)");
    return Name(i == 0 ? L"Diffuse Color" : L"Bump");
  }
  // Channels are not map ids: diffuse is slot 0, bump slot 1.
  long StdIDToChannel(long id) override { return id == ID_DI ? 0 : id == ID_BU ? 1 : 50 + id; }
  BOOL GetTwoSided() override { return TRUE; }
  BOOL GetWire() override { return FALSE; }
  Color GetDiffuse(TimeValue) override { return {0.5f, 0.5f, 0.5f}; }
  Color GetSpecular(TimeValue) override { return {1, 1, 1}; }
  Color GetFilter(TimeValue) override { return {}; }
  float GetShininess(TimeValue) override { return 0.25f; }
  float GetShinStr(TimeValue) override { return 0.1f; }
  float GetSelfIllum(TimeValue) override { return 0; }
  float GetOpacity(TimeValue) override { return 0.75f; }
  float GetIOR(TimeValue) override { return 1.6f; }
  BOOL MapEnabled(int id) override { return id == ID_BU ? FALSE : TRUE; }
  float GetTexmapAmt(int id, TimeValue) override { return id == ID_DI ? 0.5f : 1.0f; }
};

int gTriObjectsFreed = 0;

class FakeTri final : public TriObject {
 public:
  Point3 points[3] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
  Face face{};
  FakeTri() {
    mesh.verts = points;
    mesh.numVerts = 3;
    face.v[0] = 0, face.v[1] = 1, face.v[2] = 2;
    face.matID = 2;
    mesh.faces = &face;
    mesh.numFaces = 1;
  }
  ~FakeTri() override { ++gTriObjectsFreed; }
  Class_ID ClassID() override { return triObjectClassID; }
  SClass_ID SuperClassID() override { return GEOMOBJECT_CLASS_ID; }
  int CanConvertToType(Class_ID) override { return 1; }
  Object* ConvertToType(TimeValue, Class_ID) override { return this; }
};

class FakePoly final : public Object {
 public:
  SClass_ID SuperClassID() override { return GEOMOBJECT_CLASS_ID; }
  void GetClassNameW(MSTR& s, bool) const override { s = L"Editable Poly"; }
  int CanConvertToType(Class_ID) override { return 1; }
  Object* ConvertToType(TimeValue, Class_ID) override { return new FakeTri; }
};

class FakeBend final : public Modifier {
 public:
  SClass_ID SuperClassID() override { return OSM_CLASS_ID; }
  void GetClassNameW(MSTR& s, bool) const override { s = L"Bend"; }
};

class FakeStack final : public IDerivedObject {
 public:
  FakeBend bend;
  FakePoly poly;
  SClass_ID SuperClassID() override { return GEN_DERIVOB_CLASS_ID; }
  int NumModifiers() override { return 1; }
  Modifier* GetModifier(int) override { return &bend; }
  Object* GetObjRef() override { return &poly; }
};

class FakeCamera final : public GenCamera {
 public:
  SClass_ID SuperClassID() override { return CAMERA_CLASS_ID; }
  void GetClassNameW(MSTR& s, bool) const override { s = L"Physical"; }
  BOOL IsOrtho() override { return TRUE; }
  float GetFOV(TimeValue, Interval&) override { return 0.9f; }
  float GetTDist(TimeValue, Interval&) override { return 200; }
  int GetManualClip() override { return 1; }
  float GetClipDist(TimeValue, int which, Interval&) override {
    return which == CAM_HITHER_CLIP ? 1.0f : 5000.0f;
  }
};

class FakeNode final : public INode {
 public:
  std::wstring name;
  std::vector<INode*> children;
  Object* object = nullptr;
  Object* evaluated = nullptr;
  Mtl* material = nullptr;
  INode* target = nullptr;
  ObjectState state{};

  explicit FakeNode(std::wstring nodeName) : name(std::move(nodeName)) {}
  SClass_ID SuperClassID() override { return BASENODE_CLASS_ID; }
  int NumberOfChildren() override { return static_cast<int>(children.size()); }
  INode* GetChildNode(int i) override { return children[static_cast<size_t>(i)]; }
  const ObjectState& EvalWorldState(TimeValue, BOOL) override {
    state.obj = evaluated;
    return state;
  }
  Mtl* GetMtl() override { return material; }
  const MCHAR* GetName() override { return name.c_str(); }
  void SetName(const MCHAR* s) override { name = s; }
  Object* GetObjectRef() override { return object; }
  void SetObjectRef(Object* o) override { object = o; }
  Matrix3 GetNodeTM(TimeValue, Interval*) override {
    return Matrix3(Point3(1, 0, 0), Point3(0, 1, 0), Point3(0, 0, 1), Point3(5, 6, 7));
  }
  INode* GetTarget() override { return target; }
};

class FakeResolver final : public IFileResolutionManager {
 public:
  MSTR GetFullFilePath(const MCHAR* path, MaxSDK::AssetManagement::AssetType type, bool) override {
    bool known = std::wstring(path) == L"C:\\maps\\wood.png" &&
                 type == MaxSDK::AssetManagement::kBitmapAsset;
    return known ? Name(L"D:\\found\\wood.png") : MSTR();
  }
};

class FakeCore final : public Interface {
 public:
  FakeNode root{L"Scene Root"}, box{L"Box"}, camera{L"Cam"}, aim{L"Cam.Target"};
  FakeStack stack;
  FakeCamera lens;
  FakeStandard material;
  FakeBitmap wood;
  FakeLog log;
  MSTR file{L"desk.max"}, path{L"C:\\desk.max"};

  FakeCore() {
    root.children = {&box, &camera, &aim};
    box.object = &stack;
    box.evaluated = &stack.poly;
    box.material = &material;
    camera.object = camera.evaluated = &lens;
    camera.target = &aim;
    material.diffuseMap = &wood;
    material.block.map = &wood;
    material.block.node = &box;
  }
  HWND GetMAXHWnd() const override { return nullptr; }
  TimeValue GetTime() override { return 160; }
  INode* GetRootNode() override { return &root; }
  const MCHAR* GetDir(int which) override {
    return which == APP_USER_SCRIPTS_DIR ? L"C:\\scripts" : L"";
  }
  MSTR& GetCurFileName() override { return file; }
  MSTR& GetCurFilePath() override { return path; }
  BOOL ExportToFile(const MCHAR*, BOOL, DWORD, Class_ID*) override { return TRUE; }
  Point3 GetBackGround(TimeValue, Interval&) override { return Point3(0.1f, 0.2f, 0.3f); }
  BOOL GetUseEnvironmentMap() override { return TRUE; }
  Texmap* GetEnvironmentMap() override { return &wood; }
  LogSys* Log() override { return &log; }
};

TEST(MaxAdapter, AScenesSnapshotShowsWhatTheCoreReads) {
  FakeResolver resolver;
  gFakeResolver = &resolver;
  FakeCore core;
  MaxScene scene(core);
  int freedBefore = gTriObjectsFreed;
  json snapshot = json::parse(
      orvane::host::memory::WriteSceneText(*orvane::host::memory::SnapshotScene(scene)));
  gFakeResolver = nullptr;

  EXPECT_EQ(snapshot["time"], 160);
  EXPECT_EQ(snapshot["unitScale"], 0.01);
  EXPECT_EQ(snapshot["settingsDirectory"], "C:\\scripts");
  EXPECT_EQ(snapshot["file"], (json{{"name", "desk.max"}, {"path", "C:\\desk.max"}}));
  EXPECT_EQ(snapshot["environment"]["background"], json::parse("[0.1,0.2,0.3]"));

  const json& nodes = snapshot["nodes"];
  ASSERT_EQ(nodes.size(), 3u);
  EXPECT_EQ(nodes[0]["name"], "Box");
  EXPECT_EQ(nodes[0]["transform"][3], json::parse("[5.0,6.0,7.0]"));
  EXPECT_EQ(nodes[1]["target"], nodes[2]["id"]);

  // The stack over the poly, whose mesh came through a conversion that was freed again.
  json objects;
  for (const json& object : snapshot["objects"])
    objects[object.value("class", "stack")] = object;
  EXPECT_EQ(objects["Editable Poly"]["mesh"]["faces"], json::parse("[[0,1,2,2]]"));
  EXPECT_FALSE(objects["Editable Poly"].contains("triObject"));
  EXPECT_EQ(gTriObjectsFreed, freedBefore + 1);
  EXPECT_EQ(snapshot["modifiers"][0]["class"], "Bend");
  EXPECT_EQ(snapshot["modifiers"][0]["superClass"], "modifier");
  EXPECT_EQ(objects["Physical"]["camera"]["farClip"], 5000.0);
  EXPECT_EQ(objects["Physical"]["camera"]["ortho"], true);

  // The standard material: slots by channel, amounts and switches by map id.
  const json& material = snapshot["materials"][0];
  EXPECT_EQ(material["class"], "Standardmaterial");
  EXPECT_EQ(material["standard"]["ior"], 1.6);
  EXPECT_EQ(material["slots"][0]["name"], "Diffuse Color");
  EXPECT_EQ(material["slots"][0]["amount"], 0.5);
  EXPECT_EQ(material["slots"][1]["enabled"], false);
  EXPECT_TRUE(material["params"][1].is_null());
  const json& params = material["params"][0];
  EXPECT_EQ(params[0], (json{{"name", "glossiness"}, {"type", "float"}, {"value", 0.25}}));
  EXPECT_EQ(params[1]["value"], json::parse("[0.1,0.2,0.3]"));  // alpha dropped
  EXPECT_TRUE(params[2]["value"].is_null());
  EXPECT_EQ(params[3]["value"], snapshot["maps"][0]["id"]);
  EXPECT_EQ(params[4]["value"], nodes[0]["id"]);
  EXPECT_EQ(params[5], (json{{"name", nullptr}, {"type", TYPE_TIMEVALUE}, {"value", nullptr}}));

  // The bitmap: untranslated class name, settings, curves from the output's references.
  const json& map = snapshot["maps"][0];
  EXPECT_EQ(map["class"], "Bitmap");
  EXPECT_EQ(map["bitmap"]["loadedGamma"], 2.2);
  EXPECT_EQ(map["bitmap"]["uvGen"]["mapChannel"], 2);
  EXPECT_EQ(map["curves"]["rgb"].size(), 3u);
  EXPECT_TRUE(map["curves"]["rgb"][1].is_null());
  EXPECT_EQ(map["curves"]["mono"][0][0], json::parse("[0.0,1.0]"));
  EXPECT_EQ(snapshot["environment"]["map"], map["id"]);
  EXPECT_EQ(snapshot["fileResolution"],
            json::parse(R"([{"path":"C:\\maps\\wood.png","assetType":"bitmap",
                             "answer":"D:\\found\\wood.png"}])"));
}

TEST(MaxAdapter, ScriptsAnswerOnlyStringsAndTheLogKeepsItsText) {
  FakeCore core;
  MaxScene scene(core);
  // The reply's type, whether the run succeeds, and the string the core is given (none: null).
  const int types[] = {TYPE_STRING, TYPE_TSTR, TYPE_INT, TYPE_STRING};
  const bool runs[] = {true, true, true, false};
  const char16_t* expected[] = {u"plain", u"held", nullptr, nullptr};
  for (size_t i = 0; i < std::size(types); ++i) {
    gFakeScripts = [&](const MCHAR*, bool, FPValue* result) {
      result->type = static_cast<ParamType2>(types[i]);
      if (types[i] == TYPE_STRING) result->s = L"plain";
      if (types[i] == TYPE_TSTR) result->tstr = new MSTR(L"held");
      return runs[i];
    };
    orvane::host::ScriptResult result = scene.ExecuteMAXScriptScript(u"1", true, true);
    EXPECT_EQ(result.succeeded, runs[i]) << i;
    EXPECT_EQ(result.stringValue.has_value(), expected[i] != nullptr) << i;
    if (expected[i] != nullptr) {
      EXPECT_EQ(*result.stringValue, expected[i]) << i;
    }
  }
  gFakeScripts = nullptr;

  scene.Log(orvane::host::LogType(SYSLOG_WARN), u"Orvane Platform", u"100% done");
  EXPECT_EQ(core.log.format, L"%s");
  EXPECT_EQ(core.log.text, L"100% done");
}

TEST(MaxAdapter, AnAnimatableFoundByHandleIsWrappedByItsKind) {
  FakeCore core;
  MaxScene scene(core);
  AnimHandle handle = Animatable::GetHandleByAnim(&core.material);
  orvane::host::Animatable* found = scene.GetAnimByHandle(handle);
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->SuperClassID(), 0xC00u);
  EXPECT_NE(dynamic_cast<orvane::host::Mtl*>(found), nullptr);
  // The same wrapper whichever way the core reaches the material.
  EXPECT_EQ(found, scene.GetRootNode()->GetChildNode(0)->GetMtl());
  EXPECT_EQ(scene.GetAnimByHandle(handle + 1000), nullptr);
}

}  // namespace
