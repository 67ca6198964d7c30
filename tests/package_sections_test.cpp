// Displacement records and the render-settings replies.
#include <gtest/gtest.h>

#include "base/wide_text.h"
#include "host/memory/scene_file.h"
#include "package/displacement_record.h"
#include "package/render_settings.h"

namespace orvane {
namespace {

std::unique_ptr<host::memory::MemScene> Load(const std::string& body) {
  auto loaded = host::memory::LoadSceneText(R"({"format": "orvane-scene/1", )" + body + "}", ".");
  EXPECT_TRUE(loaded.scene) << loaded.error;
  return std::move(loaded.scene);
}

// box ── stack(top, below) ── inner stack(deeper) ── mesh
std::string Stack(const std::string& top, const std::string& below, const std::string& deeper) {
  return R"("nodes": [{"id": "box", "name": "Box", "object": "outer"}],
    "objects": [{"id": "mesh", "class": "Box", "superClass": "geometry"},
                {"id": "inner", "derived": {"object": "mesh", "modifiers": ["deeper"]}},
                {"id": "outer", "derived": {"object": "inner", "modifiers": ["top", "below"]}}],
    "modifiers": [{"id": "top", )" +
         top + R"(}, {"id": "below", )" + below + R"(}, {"id": "deeper", )" + deeper +
         "}], \"maps\": [{\"id\": \"t\", \"class\": \"Noise\"}]";
}

TEST(DisplacementRecords, TheTopmostDisplacementModifierIsWritten) {
  const std::string kBend = R"("class": "Bend")";
  const std::string kCoronaBare = R"("class": "CoronaDisplacementMod")";
  const std::string kCorona =
      R"("class": "CORONA_DISPLACEMENT", "params": [[{"name": "maxDisplace", "type": "world", "value": 2}, {"name": "amount", "type": "float", "value": 3}, {"name": "enabled", "type": "bool", "value": true}]])";
  const std::string kVRay =
      R"("class": "VRayDisplacementMod", "params": [[{"name": "amount", "type": "world", "value": 0.5}, {"name": "texmap", "type": "texmap", "value": "t"}]])";
  const std::string kVRayBare = R"("class": "vray_displacement")";
  const struct {
    std::string top, below, deeper;
    std::u16string record;
  } cases[] = {
      {kBend, kBend, kBend, u"null"},
      {kBend, kCoronaBare, kVRay, u"{\"displacement_found\":true}"},
      {kCorona, kVRay, kBend,
       u"{\"displacement_max\":2,\"displacement_max\":3,\"displacement_enabled\":true}"},
      {kVRay, kCorona, kBend,
       u"{\"vray_disp\":true,\"vray_disp_amount\":0.5,\"vray_disp_has_texmap\":true}"},
      {kBend, kBend, kVRayBare, u"{\"vray_disp\":true,\"vray_disp_has_texmap\":false}"},
  };
  for (const auto& c : cases) {
    auto scene = Load(Stack(c.top, c.below, c.deeper));
    auto* node = dynamic_cast<host::INode*>(scene->FindById("box"));
    EXPECT_EQ(BuildDisplacementRecord(WriteContext{*scene, 0}, node), c.record) << ToUtf8(c.record);
  }
  auto scene = Load(Stack(kBend, kBend, kBend));
  EXPECT_EQ(BuildDisplacementRecord(WriteContext{*scene, 0}, nullptr), u"null");
}

TEST(RenderSettings, RepliesAreReadFieldByField) {
  const struct {
    std::string rule;
    std::u16string mode, space;
    float gamma;
  } colours[] = {
      {R"({"contains": ["colorPipelineMgr"], "reply": "OCIO|ACEScg|2.4"})", u"OCIO", u"ACEScg",
       2.4f},
      {R"({"contains": ["colorPipelineMgr"], "reply": "|sRGB|x"})", u"unknown", u"sRGB", 2.2f},
      {R"({"contains": ["colorPipelineMgr"], "reply": "Legacy"})", u"Legacy", u"", 2.2f},
      {R"({"contains": ["colorPipelineMgr"], "reply": null})", u"unknown", u"", 2.2f},
      {R"({"contains": ["colorPipelineMgr"], "fails": true})", u"unknown", u"", 2.2f},
  };
  for (const auto& c : colours) {
    auto scene = Load(R"("scripts": [)" + c.rule + "]");
    ColorSettings settings = QueryColorSettings(*scene);
    EXPECT_EQ(settings.mode, c.mode) << c.rule;
    EXPECT_EQ(settings.renderingSpace, c.space) << c.rule;
    EXPECT_FLOAT_EQ(settings.displayGamma, c.gamma) << c.rule;
  }
  const struct {
    std::string reply;
    bool found;
    float amount;
    bool relative;
  } displacements[] = {
      {R"("2.5|false")", true, 2.5f, false}, {R"("1.0|True")", true, 1.0f, true},
      {R"("1.0|TRUE")", true, 1.0f, false},  {R"("1.0|true|x")", true, 1.0f, false},
      {R"("|true")", false, 1.0f, true},     {R"("abc|true")", false, 1.0f, true},
      {R"("2.5")", false, 1.0f, true},       {"null", false, 1.0f, true},
  };
  for (const auto& c : displacements) {
    auto scene =
        Load(R"("scripts": [{"contains": ["displacement_amount"], "reply": )" + c.reply + "}]");
    RenderDisplacement settings = QueryRenderDisplacement(*scene);
    EXPECT_EQ(settings.found, c.found) << c.reply;
    EXPECT_FLOAT_EQ(settings.amount, c.amount) << c.reply;
    EXPECT_EQ(settings.relative, c.relative) << c.reply;
  }
}

}  // namespace
}  // namespace orvane
