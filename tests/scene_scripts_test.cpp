// The scene-preparation scripts as sent, every reply they can meet, and the FBX export's two
// ways of failing.
#include <gtest/gtest.h>

#include <filesystem>

#include "base/wide_text.h"
#include "host/memory/scene_file.h"
#include "pipeline/fbx_export.h"
#include "pipeline/scene_scripts.h"

namespace orvane {
namespace {

using host::memory::MemScene;
using host::memory::ScriptRule;

std::unique_ptr<MemScene> EmptyScene() {
  auto loaded = host::memory::LoadSceneText(R"({"format": "orvane-scene/1"})", ".");
  return std::move(loaded.scene);
}

// Brackets outside strings and "--" comments must pair up, or the host refuses the whole block.
bool BracketsBalance(std::u16string_view script) {
  std::u16string open;
  bool inString = false;
  for (size_t i = 0; i < script.size(); ++i) {
    char16_t c = script[i];
    if (inString) {
      if (c == u'\\')
        ++i;
      else if (c == u'"')
        inString = false;
      continue;
    }
    if (c == u'"')
      inString = true;
    else if (c == u'-' && i + 1 < script.size() && script[i + 1] == u'-')
      i = script.find(u'\n', i);
    else if (c == u'(' || c == u'[')
      open += c;
    else if (c == u')' || c == u']') {
      if (open.empty() || open.back() != (c == u')' ? u'(' : u'[')) return false;
      open.pop_back();
    }
    if (i == std::u16string_view::npos) break;
  }
  return open.empty() && !inString;
}

TEST(SceneScripts, EachIsOneBalancedBlockAndTheVRayOneIsOneLine) {
  for (std::u16string_view script :
       {kGeometryBakeScript, kSplineCopiesScript, kSplineRestoreScript, kVRayConvertScript}) {
    EXPECT_EQ(script.front(), u'(');
    EXPECT_EQ(script.back(), u')');
    EXPECT_TRUE(BracketsBalance(script)) << ToUtf8(script.substr(0, 60));
  }
  EXPECT_EQ(kVRayConvertScript.find(u'\n'), std::u16string_view::npos);
  EXPECT_FALSE(BracketsBalance(u"(try (a) catch ()"));  // the checker itself catches a fault
}

TEST(SceneScripts, EachRunsWithItsOwnFlags) {
  auto scene = EmptyScene();
  RunSplineCopies(*scene);
  RunSplineRestore(*scene);
  RunGeometryBake(*scene);
  RunVRayCheck(*scene, [](std::u16string_view) { return u"1"; });
  ASSERT_EQ(scene->scriptsRun.size(), 4u);
  const struct {
    std::u16string_view script;
    bool quietErrors, wantResult;
  } expected[] = {{kSplineCopiesScript, true, true},
                  {kSplineRestoreScript, true, true},
                  {kGeometryBakeScript, false, false},
                  {kVRayConvertScript, true, true}};
  for (size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(scene->scriptsRun[i].script, expected[i].script) << i;
    EXPECT_EQ(scene->scriptsRun[i].quietErrors, expected[i].quietErrors) << i;
    EXPECT_EQ(scene->scriptsRun[i].wantResult, expected[i].wantResult) << i;
  }
}

ScriptRule Reply(std::optional<std::u16string> text, bool fails = false) {
  return ScriptRule{{}, fails, std::move(text)};
}

TEST(SceneScripts, SplineCopiesCountOnlyABakedReply) {
  const struct {
    ScriptRule rule;
    int32_t count;
  } cases[] = {{Reply(u"BAKED:3"), 3},  {Reply(u"BAKED:0"), 0},    {Reply(u"BAKED:"), 0},
               {Reply(u"baked:2"), -1}, {Reply(u""), -1},          {Reply(std::nullopt), -1},
               {Reply(u"x", true), -1}, {Reply(u"RESTORED:1"), -1}};
  for (const auto& c : cases) {
    auto scene = EmptyScene();
    scene->scriptRules = {c.rule};
    EXPECT_EQ(RunSplineCopies(*scene), c.count) << ToUtf8(c.rule.reply.value_or(u"(none)"));
  }
}

TEST(SceneScripts, TheVRayConversionRunsOnlyWhenSwitchedOn) {
  for (std::optional<std::u16string> value :
       {std::optional<std::u16string>(), std::optional<std::u16string>(u""),
        std::optional<std::u16string>(u"0"), std::optional<std::u16string>(u"yes"),
        std::optional<std::u16string>(u"12345678")}) {
    auto scene = EmptyScene();
    VRayCheckResult result = RunVRayCheck(*scene, [&](std::u16string_view name) {
      EXPECT_EQ(name, u"ORVANE_VRAY_CONVERT");
      return value;
    });
    EXPECT_FALSE(result.attempted) << ToUtf8(value.value_or(u"(unset)"));
    EXPECT_TRUE(scene->scriptsRun.empty());
  }
}

TEST(SceneScripts, EveryVRayReplyHasItsOutcome) {
  const std::u16string empty =
      u"ExecuteMAXScriptScript вернул пусто/не-строку (см. Listener на предмет синтаксической "
      u"ошибки в скрипте)";
  const struct {
    std::u16string switchValue;
    ScriptRule rule;
    bool attempted, succeeded;
    int32_t converted;
    std::u16string error;
  } cases[] = {
      {u"1", Reply(u"CONVERTED:4"), true, true, 4, u""},
      {u"1234567", Reply(u"CONVERTED:0"), true, true, 0, u""},
      {u"1", Reply(u"NONE"), false, false, 0, u""},
      {u"1", Reply(u"ERROR:fileIn failed: -- Syntax error"), true, false, 0,
       u"fileIn failed: -- Syntax error"},
      {u"1", Reply(u"ERROR:"), true, false, 0, u""},
      {u"1", Reply(u"NONE "), true, false, 0, u"Неожиданный ответ скрипта: NONE "},
      {u"1", Reply(u""), true, false, 0, empty},
      {u"1", Reply(std::nullopt), true, false, 0, empty},
      {u"1", Reply(u"CONVERTED:2", true), true, false, 0, empty},
  };
  for (const auto& c : cases) {
    auto scene = EmptyScene();
    scene->scriptRules = {c.rule};
    VRayCheckResult result =
        RunVRayCheck(*scene, [&](std::u16string_view) { return c.switchValue; });
    SCOPED_TRACE(ToUtf8(c.rule.reply.value_or(u"(no string)")));
    EXPECT_EQ(result.attempted, c.attempted);
    EXPECT_EQ(result.succeeded, c.succeeded);
    EXPECT_EQ(result.converted, c.converted);
    EXPECT_EQ(result.error, c.error);
  }
}

TEST(FbxExport, TellsTheTwoFailuresApart) {
  namespace fs = std::filesystem;
  fs::path folder = fs::temp_directory_path() / "orvane-fbx-export";
  fs::remove_all(folder);
  fs::create_directories(folder);
  const std::u16string refused =
      u"FBX export failed (FBX exporter not available or export was rejected \u2014 is the FBX "
      u"plugin installed in 3ds Max?)";
  const std::u16string path = (folder / "Loft_ab.fbx").u16string();
  const std::u16string missingFolder = (folder / "nowhere" / "Loft_ab.fbx").u16string();
  const struct {
    host::memory::ExportBehaviour behaviour;
    std::u16string path;
    bool ok;
    std::u16string message;
  } cases[] = {
      {host::memory::ExportBehaviour::kWrites, path, true, u""},
      {host::memory::ExportBehaviour::kFails, path, false, refused},
      {host::memory::ExportBehaviour::kWritesNothing, path, false,
       u"FBX was not created:\n" + path +
           u"\n\nPossible reasons:\n\u2022 Exchange Folder is not accessible from Windows\n"
           u"\u2022 No write permissions\n\u2022 FBX export settings prohibit export"},
      {host::memory::ExportBehaviour::kWrites, missingFolder, false, refused},
  };
  for (const auto& c : cases) {
    fs::remove(path);
    auto scene = EmptyScene();
    scene->exportBehaviour = c.behaviour;
    std::u16string message = u"left over";
    EXPECT_EQ(ExportFbx(*scene, scene->files, c.path, message), c.ok);
    EXPECT_EQ(message, c.message);
  }
  fs::remove_all(folder);
}

}  // namespace
}  // namespace orvane
