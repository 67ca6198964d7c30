// Texture collection over a real folder tree: what is found, how, and what lands in "textures".
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "base/wide_text.h"
#include "host/file_read.h"
#include "host/memory/scene_file.h"
#include "prep/texture_collection.h"
#include "tests/temp_folder.h"

namespace orvane {
namespace {

namespace fs = std::filesystem;
using testing::FileContents;
using testing::TempFolder;

TEST(FileNamePart, TakesWhatFollowsTheLastSeparatorOfEitherKind) {
  const struct {
    std::u16string path, name;
  } cases[] = {{u"C:\\maps\\wood.jpg", u"wood.jpg"},
               {u"/srv/maps/wood.jpg", u"wood.jpg"},
               {u"C:\\mixed/dir\\a.png", u"a.png"},
               {u"plain.tif", u"plain.tif"},
               {u"C:\\folder\\", u""}};
  for (const auto& c : cases)
    EXPECT_EQ(FileNamePart(c.path), c.name) << ToUtf8(c.path);
}

TEST(IsFileTexmap, TheStandardBitmapAndThreeRendererFileMaps) {
  auto loaded = host::memory::LoadSceneText(R"({"format": "orvane-scene/1", "maps": [
      {"id": "a", "class": "Bitmap", "classId": ["0x240", "0x0"]},
      {"id": "b", "class": "Bitmaptexture", "classId": ["0x240", "0x0"]},
      {"id": "c", "class": "CoronaBitmap"}, {"id": "d", "class": "VRayBitmap"},
      {"id": "e", "class": "*VRayHDRI"}, {"id": "f", "class": "Bitmap"},
      {"id": "g", "class": "OSLBitmap"}, {"id": "h", "class": "VRayBitmapFilter"}]})",
                                            ".");
  ASSERT_TRUE(loaded.scene) << loaded.error;
  for (auto [id, collected] : {std::pair{"a", true},
                               {"b", true},
                               {"c", true},
                               {"d", true},
                               {"e", true},
                               {"f", false},
                               {"g", false},
                               {"h", false}}) {
    auto* map = static_cast<host::Texmap*>(loaded.scene->FindById(id));
    EXPECT_EQ(IsFileTexmap(*map), collected) << id;
  }
}

// Every way a file is found, once each, and everything that must not be collected.
TEST(CollectTextures, FindsCopiesAndListsEachFileOnce) {
  TempFolder folder("orvane-textures");
  folder.Write("disk/a/wood.jpg", "wood from a");
  folder.Write("disk/b/wood.jpg", "wood from b");
  folder.Write("disk/stone.png", "stone");
  folder.Write("disk/sky.hdr", "sky");
  folder.Write("disk/projector.jpg", "projector");
  folder.Write("disk/relative.jpg", "found beside the scene path");
  folder.Write("disk/moved.jpg", "found by the resolver");
  folder.Write("disk/env_detail.png", "below the environment map");
  auto loaded = host::memory::LoadSceneText(R"({"format": "orvane-scene/1",
    "file": {"name": "loft.max", "path": "C:\\Projects\\Loft"},
    "environment": {"useMap": true, "map": "sky"},
    "nodes": [{"id": "n1", "object": "geo", "material": "m1"},
              {"id": "n2", "object": "geo", "material": "m2"},
              {"id": "lamp", "object": "light", "material": "projectorMtl"}],
    "objects": [{"id": "geo", "class": "Box", "superClass": "geometry"},
                {"id": "light", "class": "CoronaLight", "superClass": "light"}],
    "materials": [
      {"id": "m1", "class": "CoronaPhysicalMtl", "name": "One", "slots": [
        {"name": "base", "map": "wood"}, {"name": "bump", "map": "stone"},
        {"name": "rough", "map": "lost1"}, {"name": "refl", "map": "rel"}]},
      {"id": "m2", "class": "VRayMtl", "name": "Two", "slots": [
        {"name": "diffuse", "map": "wood"}, {"name": "bump", "map": "lost2"},
        {"name": "refl", "map": "otherWood"}, {"name": "gloss", "map": "moved"},
        {"name": "opacity", "map": "blank"}]},
      {"id": "projectorMtl", "class": "VRayMtl", "name": "P", "slots": [{"name": "d", "map": "proj"}]}],
    "maps": [
      {"id": "wood", "class": "Bitmap", "classId": ["0x240", "0x0"], "bitmap": {"mapName": "C:\\maps\\wood.jpg"}},
      {"id": "otherWood", "class": "Bitmap", "classId": ["0x240", "0x0"], "bitmap": {"mapName": "D:\\b\\wood.jpg"}},
      {"id": "stone", "class": "CoronaBitmap", "params": [[{"name": "filename", "type": "filename", "value": "  C:\\maps\\stone.png\r\n"}]]},
      {"id": "lost1", "class": "VRayBitmap", "params": [[{"name": "fileName", "type": "filename", "value": "E:\\gone\\lost.jpg"}]]},
      {"id": "lost2", "class": "CoronaBitmap", "params": [[{"name": "filename", "type": "filename", "value": "E:\\gone\\lost.jpg"}]]},
      {"id": "rel", "class": "VRayBitmap", "params": [[{"name": "fileName", "type": "filename", "value": "tex\\relative.jpg"}]]},
      {"id": "moved", "class": "VRayBitmap", "params": [[{"name": "fileName", "type": "filename", "value": "C:\\old\\moved.jpg"}]]},
      {"id": "blank", "class": "CoronaBitmap", "params": [[{"name": "filename", "type": "filename", "value": " \t "}]]},
      {"id": "sky", "class": "VRayHDRI", "slots": [{"name": "detail", "map": "envDetail"}],
       "params": [[{"name": "HDRIMapName", "type": "filename", "value": "C:\\hdri\\sky.hdr"}]]},
      {"id": "envDetail", "class": "Bitmap", "classId": ["0x240", "0x0"], "bitmap": {"mapName": "C:\\maps\\env_detail.png"}},
      {"id": "proj", "class": "Bitmap", "classId": ["0x240", "0x0"], "bitmap": {"mapName": "C:\\maps\\projector.jpg"}}],
    "fileResolution": [{"path": "C:\\old\\moved.jpg", "assetType": "bitmap", "answer": "C:\\new\\moved.jpg"}],
    "files": {"C:\\maps\\wood.jpg": "disk/a/wood.jpg", "D:\\b\\wood.jpg": "disk/b/wood.jpg",
              "C:\\maps\\stone.png": "disk/stone.png", "C:\\hdri\\sky.hdr": "disk/sky.hdr",
              "C:\\maps\\projector.jpg": "disk/projector.jpg",
              "C:\\Projects\\Loft\\tex\\relative.jpg": "disk/relative.jpg",
              "C:\\new\\moved.jpg": "disk/moved.jpg", "C:\\maps\\env_detail.png": "disk/env_detail.png",
              "C:\\Jobs\\Loft_1\\textures": "job/textures"}})",
                                            folder.path);
  ASSERT_TRUE(loaded.scene) << loaded.error;
  auto& scene = *loaded.scene;
  // The job folder is a real folder reached through the scene's own mapping of host paths.
  for (std::string name :
       {"wood.jpg", "stone.png", "relative.jpg", "moved.jpg", "sky.hdr", "env_detail.png"}) {
    scene.files.AddAlias(u"C:\\Jobs\\Loft_1\\textures\\" + FromUtf8(name),
                         folder.path / "job" / "textures" / name);
  }
  fs::create_directories(folder.path / "job");

  TextureCollectResult result = CollectTextures(scene, scene.files, u"C:\\Jobs\\Loft_1");

  // wood (a), stone, relative, wood (b), moved, sky, env_detail; the shared wood map once.
  EXPECT_EQ(result.copied, 7);
  EXPECT_EQ(result.missing, std::vector<std::u16string>{u"Missing: lost.jpg"});
  fs::path textures = folder.path / "job" / "textures";
  EXPECT_EQ(FileContents(textures / "wood.jpg"), "wood from b");  // the later copy wins
  EXPECT_EQ(FileContents(textures / "stone.png"), "stone");
  EXPECT_EQ(FileContents(textures / "relative.jpg"), "found beside the scene path");
  EXPECT_EQ(FileContents(textures / "moved.jpg"), "found by the resolver");
  EXPECT_EQ(FileContents(textures / "sky.hdr"), "sky");
  EXPECT_EQ(FileContents(textures / "env_detail.png"), "below the environment map");
  EXPECT_FALSE(fs::exists(textures / "projector.jpg"));  // only reachable from a light
  size_t files = 0;
  for ([[maybe_unused]] const auto& entry : fs::directory_iterator(textures))
    ++files;
  EXPECT_EQ(files, 6u);
}

TEST(CollectTextures, WithoutAResolverOrAPathAFileIsMissing) {
  TempFolder folder("orvane-textures");
  auto loaded = host::memory::LoadSceneText(R"({"format": "orvane-scene/1",
    "nodes": [{"id": "n", "object": "geo", "material": "m"}],
    "objects": [{"id": "geo", "class": "Box", "superClass": "geometry"}],
    "materials": [{"id": "m", "class": "VRayMtl", "name": "M", "slots": [{"name": "d", "map": "t"}]}],
    "maps": [{"id": "t", "class": "VRayBitmap", "params": [[{"name": "fileName", "type": "filename", "value": "C:\\old\\moved.jpg"}]]}],
    "fileResolution": null})",
                                            folder.path);
  ASSERT_TRUE(loaded.scene) << loaded.error;
  TextureCollectResult result =
      CollectTextures(*loaded.scene, loaded.scene->files, (folder.path / "job").u16string());
  EXPECT_EQ(result.copied, 0);
  EXPECT_EQ(result.missing, std::vector<std::u16string>{u"Missing: moved.jpg"});
}

}  // namespace
}  // namespace orvane
