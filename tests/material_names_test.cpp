// Material names made safe and unique for the export, and put back afterwards.
#include <gtest/gtest.h>

#include "base/wide_text.h"
#include "host/memory/scene_file.h"
#include "prep/material_names.h"

namespace orvane {
namespace {

using host::memory::MemScene;

std::unique_ptr<MemScene> Load(const std::string& text) {
  auto loaded = host::memory::LoadSceneText(text, ".");
  EXPECT_TRUE(loaded.scene) << loaded.error;
  return std::move(loaded.scene);
}

std::u16string NameOf(MemScene& scene, const std::string& id) {
  return static_cast<host::Mtl*>(scene.FindById(id))->GetName();
}

TEST(SanitizeMaterialName, KeepsOnlySafeCharactersWithinFiftySixCodeUnits) {
  const std::u16string fiftySix(56, u'b');
  const struct {
    std::u16string name, safe;
    bool hashed;  // `safe` is then the prefix before "_" and six hex digits
  } cases[] = {
      {u"Brick Wall", u"Brick_Wall", false},
      {u"Brick.Wall", u"Brick_Wall", false},
      {u"Glass", u"Glass", false},
      {u"Glass (1)", u"Glass_1", false},
      {u"###", u"", false},
      {u"#", u"", false},
      {u"__lead__", u"_lead", false},  // runs collapse; leading "_" stays, trailing ones go
      {u"a--b__c", u"a--b_c", false},
      {u"Stoff/Wolle \u00fcber", u"Stoff_Wolle_ber", false},
      {u"\U0001F600Smile", u"_Smile", false},  // both surrogate halves become one "_"
      {fiftySix, fiftySix, false},
      {fiftySix + u"b", std::u16string(49, u'b'), true},
      {std::u16string(60, u'a'), std::u16string(49, u'a'), true},
      // The cut prefix loses its trailing underscores before the hash is appended.
      {std::u16string(48, u'c') + u"  " + std::u16string(20, u'd'), std::u16string(48, u'c'), true},
  };
  for (const auto& c : cases) {
    std::u16string safe = SanitizeMaterialName(c.name);
    SCOPED_TRACE(ToUtf8(c.name));
    if (!c.hashed) {
      EXPECT_EQ(safe, c.safe);
      continue;
    }
    ASSERT_EQ(safe.size(), c.safe.size() + 7);
    EXPECT_EQ(safe.substr(0, c.safe.size() + 1), c.safe + u"_");
    EXPECT_EQ(safe.find_first_not_of(u"0123456789abcdef", c.safe.size() + 1), std::u16string::npos);
  }
}

TEST(SanitizeMaterialName, TheHashIsTakenOverTheNameAsItWasRead) {
  // djb2 of the 60 code units "a": h = h * 33 + 97, sixty times, low 24 bits.
  uint32_t h = 5381;
  for (int i = 0; i < 60; ++i)
    h = h * 33 + 97;
  char expected[8];
  std::snprintf(expected, sizeof expected, "%06x", h & 0xFFFFFF);
  EXPECT_EQ(SanitizeMaterialName(std::u16string(60, u'a')),
            std::u16string(49, u'a') + u"_" + AsciiToWide(expected));
  // Two long names that sanitise alike still differ by their hash.
  EXPECT_NE(SanitizeMaterialName(std::u16string(60, u'x') + u"."),
            SanitizeMaterialName(std::u16string(60, u'x') + u"/"));
}

// Nodes in post-order: Shelf's child Book comes first; the light's material is never visited.
//   root
//   ├── Shelf (geometry, "Brick Wall" multi: [Glass (1), Brick.Wall])
//   │   └── Book (geometry, "Brick.Wall")
//   ├── Lamp (light, "Lamp Shade")
//   ├── Vase (geometry, "Glass")
//   └── Cup (geometry, "###") and Plate (geometry, "#")
constexpr char kScene[] = R"json({"format": "orvane-scene/1",
  "nodes": [
    {"id": "shelf", "name": "Shelf", "object": "geo", "material": "multi"},
    {"id": "book", "name": "Book", "parent": "shelf", "object": "geo", "material": "dot"},
    {"id": "lamp", "name": "Lamp", "object": "light", "material": "shade"},
    {"id": "vase", "name": "Vase", "object": "geo", "material": "glass"},
    {"id": "cup", "name": "Cup", "object": "geo", "material": "hashes"},
    {"id": "plate", "name": "Plate", "object": "geo", "material": "hash"}],
  "objects": [{"id": "geo", "class": "Box", "superClass": "geometry"},
              {"id": "light", "class": "CoronaLight", "superClass": "light"}],
  "materials": [
    {"id": "multi", "class": "Multimaterial", "name": "Brick Wall", "subMaterials": ["glass1", "dot", null]},
    {"id": "glass1", "class": "VRayMtl", "name": "Glass (1)"},
    {"id": "dot", "class": "VRayMtl", "name": "Brick.Wall"},
    {"id": "shade", "class": "VRayMtl", "name": "Lamp Shade"},
    {"id": "glass", "class": "VRayMtl", "name": "Glass"},
    {"id": "hashes", "class": "VRayMtl", "name": "###"},
    {"id": "hash", "class": "VRayMtl", "name": "#"}]})json";

TEST(DeduplicateMaterialNames, GroupsBySafeNameInDiscoveryOrderAndRestores) {
  auto scene = Load(kScene);
  std::vector<MtlRestoreEntry> list = DeduplicateMaterialNames(*scene);

  // "Brick.Wall" is discovered first (through Book), then the multi "Brick Wall".
  EXPECT_EQ(NameOf(*scene, "dot"), u"Brick_Wall_01");
  EXPECT_EQ(NameOf(*scene, "multi"), u"Brick_Wall_02");
  EXPECT_EQ(NameOf(*scene, "glass1"), u"Glass_1");
  EXPECT_EQ(NameOf(*scene, "glass"), u"Glass");
  EXPECT_EQ(NameOf(*scene, "hashes"), u"_01");
  EXPECT_EQ(NameOf(*scene, "hash"), u"_02");
  EXPECT_EQ(NameOf(*scene, "shade"), u"Lamp Shade");  // on a light: not visited

  std::vector<std::u16string> previous;
  for (const MtlRestoreEntry& entry : list)
    previous.push_back(entry.previousName);
  EXPECT_EQ(previous, (std::vector<std::u16string>{u"Brick.Wall", u"Brick Wall", u"Glass (1)",
                                                   u"###", u"#"}));

  EXPECT_EQ(RestoreMaterialNames(*scene, list), 0);
  for (auto [id, name] : {std::pair{"dot", u"Brick.Wall"},
                          {"multi", u"Brick Wall"},
                          {"glass1", u"Glass (1)"},
                          {"hashes", u"###"},
                          {"hash", u"#"}}) {
    EXPECT_EQ(NameOf(*scene, id), name) << id;
  }
}

TEST(DeduplicateMaterialNames, ANamelessMaterialHidesItsSubMaterialsAndExactCaseSeparates) {
  auto scene = Load(R"({"format": "orvane-scene/1",
    "nodes": [{"id": "a", "object": "geo", "material": "nameless"},
              {"id": "b", "object": "geo", "material": "wood"},
              {"id": "c", "object": "geo", "material": "Wood"}],
    "objects": [{"id": "geo", "class": "Box", "superClass": "geometry"}],
    "materials": [
      {"id": "nameless", "class": "Multimaterial", "name": "", "subMaterials": ["inner"]},
      {"id": "inner", "class": "VRayMtl", "name": "inner name"},
      {"id": "wood", "class": "VRayMtl", "name": "wood"},
      {"id": "Wood", "class": "VRayMtl", "name": "Wood"}]})");
  EXPECT_TRUE(DeduplicateMaterialNames(*scene).empty());
  EXPECT_EQ(NameOf(*scene, "inner"), u"inner name");
}

TEST(DeduplicateMaterialNames, RestoringDeletedMaterialsCountsThemAndTouchesNothingElse) {
  auto scene = Load(kScene);
  std::vector<MtlRestoreEntry> list = DeduplicateMaterialNames(*scene);
  auto* deleted = static_cast<host::Mtl*>(scene->FindById("multi"));
  scene->ForgetHandle(deleted->GetHandle());
  EXPECT_EQ(RestoreMaterialNames(*scene, list), 1);
  EXPECT_EQ(deleted->GetName(), u"Brick_Wall_02");
  EXPECT_EQ(NameOf(*scene, "dot"), u"Brick.Wall");

  // Without a handle the pointer is used; without either nothing can be restored.
  std::vector<MtlRestoreEntry> byPointer{{0, deleted, u"Back"}, {0, nullptr, u"Lost"}};
  EXPECT_EQ(RestoreMaterialNames(*scene, byPointer), 1);
  EXPECT_EQ(deleted->GetName(), u"Back");
}

}  // namespace
}  // namespace orvane
