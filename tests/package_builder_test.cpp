// The package builder's failure paths and limits.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>

#include "base/wide_text.h"
#include "host/forwarding_file_system.h"
#include "host/memory/scene_file.h"
#include "lights/lights.h"
#include "package/package_builder.h"
#include "tests/temp_folder.h"

namespace orvane {
namespace {

namespace fs = std::filesystem;
using testing::FileContents;
using testing::TempFolder;

std::unique_ptr<host::memory::MemScene> Scene(const std::string& nodes) {
  auto loaded =
      host::memory::LoadSceneText(R"({"format": "orvane-scene/1", "nodes": [)" + nodes + R"(],
      "objects": [{"id": "o", "class": "Box", "superClass": "geometry"}],
      "materials": [{"id": "m", "class": "VRayMtl", "name": "M"}]})",
                                  ".");
  EXPECT_TRUE(loaded.scene) << loaded.error;
  return std::move(loaded.scene);
}

TEST(PackageBuilder, AnUnwritablePathFailsBeforeAnyMaterialIsWrittenAndWritesNoLog) {
  auto loaded = host::memory::LoadSceneText(R"({"format": "orvane-scene/1",
      "nodes": [{"id": "a", "name": "Box", "object": "o", "material": "m"}],
      "objects": [{"id": "o", "class": "Box", "superClass": "geometry"}],
      "materials": [{"id": "m", "class": "VRayMtl", "name": "M",
                     "slots": [{"name": "diffuse", "map": "t"}]}],
      "maps": [{"id": "t", "class": "Noise", "name": "noise"}]})",
                                            ".");
  ASSERT_TRUE(loaded.scene) << loaded.error;
  auto& scene = *loaded.scene;
  TempFolder folder("orvane-builder");
  fs::path document = folder.path / "missing-folder" / "1.json";
  NodeTreeState state;
  BuildResult result =
      BuildPackage(WriteContext{scene, 0}, scene.files, state, document.u16string());
  EXPECT_FALSE(result.success);
  EXPECT_EQ(result.objectCount, 0);
  EXPECT_GT(result.logLineCount, 0);
  for (const auto& run : scene.scriptsRun)
    EXPECT_EQ(run.script.find(u"o = mp.output"), std::u16string::npos) << "the map was probed";
  EXPECT_FALSE(fs::exists(folder.path / "missing-folder"));
}

// A material whose host throws the moment it is asked anything.
class BrokenMaterial final : public host::Mtl {
 public:
  host::AnimHandle GetHandle() const override { return 0; }
  std::u16string GetClassName() const override { throw std::runtime_error("host failure"); }
  host::Class_ID ClassID() const override { return {}; }
  host::SClass_ID SuperClassID() const override { return host::MATERIAL_CLASS_ID; }
  int NumParamBlocks() const override { return 0; }
  host::IParamBlock2* GetParamBlock(int) const override { return nullptr; }
  std::u16string GetName() const override { return u"Broken"; }
  void SetName(std::u16string_view) override {}
  int NumSubTexmaps() const override { return 0; }
  host::Texmap* GetSubTexmap(int) const override { return nullptr; }
  std::u16string GetSubTexmapSlotName(int, bool) const override { return {}; }
  int NumSubMtls() const override { return 0; }
  host::Mtl* GetSubMtl(int) const override { return nullptr; }
};

TEST(PackageBuilder, AMaterialThatThrowsCostsOnlyItsOwnRecord) {
  auto scene = Scene(R"({"id": "a", "name": "Bad", "object": "o", "material": "m"},
                        {"id": "b", "name": "Good", "object": "o", "material": "m"})");
  BrokenMaterial broken;
  dynamic_cast<host::memory::MemNode*>(scene->FindById("a"))->material = &broken;
  TempFolder folder("orvane-builder");
  NodeTreeState state;
  fs::path document = folder.path / "1.json";
  BuildResult result =
      BuildPackage(WriteContext{*scene, 0}, scene->files, state, document.u16string());
  ASSERT_TRUE(result.success);
  EXPECT_EQ(result.objectCount, 2);
  std::ifstream in(document);
  std::string package((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  EXPECT_NE(
      package.find("\"errors\": [\"buildMaterialJson exception\"],\n    \"material\": null\n"),
      std::string::npos);
  EXPECT_NE(package.find("\"object_name\": \"Good\""), std::string::npos);
  std::ifstream log(folder.path / "1.log");
  std::string logText((std::istreambuf_iterator<char>(log)), std::istreambuf_iterator<char>());
  EXPECT_NE(logText.find("[Bad] buildMaterialJson exception\n"), std::string::npos);
}

TEST(PackageBuilder, RenamesPastNineHundredNinetyNineGrowTheNumberAndStayInTheScene) {
  std::string nodes;
  for (int i = 0; i < 1002; ++i) {
    nodes += (i ? "," : "") + std::string(R"({"id": "n)") + std::to_string(i) +
             R"(", "name": "Box", "object": "o", "material": "m"})";
  }
  auto scene = Scene(nodes);
  TempFolder folder("orvane-builder");
  NodeTreeState state;
  BuildPackage(WriteContext{*scene, 0}, scene->files, state, (folder.path / "1.json").u16string());
  EXPECT_EQ(dynamic_cast<host::INode*>(scene->FindById("n999"))->GetName(), u"Box_999");
  EXPECT_EQ(dynamic_cast<host::INode*>(scene->FindById("n1001"))->GetName(), u"Box_1001");
  EXPECT_EQ(scene->renames.size(), 1001u);
}

// A disk that is full from the first block on: it counts what it is offered after that.
class FullDisk final : public host::ForwardingFileSystem {
 public:
  using ForwardingFileSystem::ForwardingFileSystem;
  size_t bytesOfferedAfterFailing = 0;

  bool WriteStreamed(std::u16string_view,
                     const std::function<void(host::ByteSink&)>& produce) override {
    Sink sink(*this);
    produce(sink);
    return !sink.Failed();
  }

 private:
  class Sink final : public host::ByteSink {
   public:
    explicit Sink(FullDisk& disk) : disk_(disk) {}
    void Write(std::string_view bytes) override {
      if (failed_) disk_.bytesOfferedAfterFailing += bytes.size();
    }
    void WriteBlock(std::string& block) override {
      Write(block);
      block.clear();
      failed_ = true;
    }
    bool Failed() const override { return failed_; }

   private:
    FullDisk& disk_;
    bool failed_ = false;
  };
};

TEST(PackageBuilder, AFailedWriteEndsTheBuildAtOnce) {
  std::string nodes;
  for (int i = 0; i < 8000; ++i) {  // records for about three blocks
    nodes += (i ? "," : "") + std::string(R"({"id": "n)") + std::to_string(i) +
             R"(", "name": "Box)" + std::to_string(i) + R"(", "object": "o", "material": "m"})";
  }
  auto scene = Scene(nodes);
  FullDisk disk(scene->files);
  TempFolder folder("orvane-builder");
  NodeTreeState state;
  BuildResult result =
      BuildPackage(WriteContext{*scene, 0}, disk, state, (folder.path / "1.json").u16string());
  EXPECT_FALSE(result.success);
  EXPECT_EQ(disk.bytesOfferedAfterFailing, 0u);
  EXPECT_FALSE(fs::exists(folder.path / "1.log"));
}

TEST(PackageBuilder, TheLogLiesBesideTheDocument) {
  const struct {
    const char16_t* document;
    const char16_t* log;
  } cases[] = {
      {u"D:\\exchange\\\\scene_ab12cd34\\1.json", u"D:\\exchange\\\\scene_ab12cd34\\1.log"},
      {u"C:\\my.folder\\package", u"C:\\my.log"},  // the last "." may be in a folder name
      {u"package", u"package.log"},
      {u"/tmp/1.json", u"/tmp/1.log"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(LogPathFor(c.document), c.log) << ToUtf8(c.document);
}

TEST(IesFiles, OnlyFilesUpToOneMebibyteAreRead) {
  TempFolder folder("orvane-builder");
  host::LocalFileSystem files;
  const struct {
    const char* name;
    size_t size;
    bool read;
  } cases[] = {{"empty.ies", 0, false},
               {"one-byte.ies", 1, true},
               {"limit.ies", 1 << 20, true},
               {"over.ies", (1 << 20) + 1, false}};
  for (const auto& c : cases) {
    fs::path path = folder.path / c.name;
    std::ofstream(path, std::ios::binary) << std::string(c.size, 'x');
    EXPECT_EQ(ReadIesText(files, path.u16string()).size(), c.read ? c.size : 0u) << c.name;
  }
  EXPECT_EQ(ReadIesText(files, (folder.path / "absent.ies").u16string()), u"");
}

TEST(IesFiles, TextThatIsNotUtf8IsReadAsTheAnsiCodePage) {
  TempFolder folder("orvane-builder");
  host::LocalFileSystem files;
  fs::path utf8 = folder.path / "utf8.ies", latin = folder.path / "latin.ies";
  std::ofstream(utf8, std::ios::binary) << "caf\xc3\xa9";
  std::ofstream(latin, std::ios::binary) << "caf\xe9 \x80\x81";
  EXPECT_EQ(ReadIesText(files, utf8.u16string()), u"caf\u00e9");
  EXPECT_EQ(ReadIesText(files, latin.u16string()), u"caf\u00e9 \u20ac\u0081");
}

}  // namespace
}  // namespace orvane

namespace orvane {
namespace {

// 100 objects whose materials share 10 maps: each map's probe runs once per build, however many
// trees write it; a second build asks again (the scene may have changed in between).
TEST(PackageBuilder, EachMapIsProbedOncePerBuild) {
  std::string nodes, materials, maps;
  for (int i = 0; i < 100; ++i) {
    std::string n = std::to_string(i);
    nodes += std::string(i ? "," : "") + R"({"id": "n)" + n + R"(", "name": "Box)" + n +
             R"(", "object": "o", "material": "m)" + n + R"("})";
    materials +=
        std::string(i ? "," : "") + R"({"id": "m)" + n + R"(", "class": "VRayMtl", "name": "M)" +
        n + R"(", "slots": [{"name": "diffuse", "map": "t)" + std::to_string(i % 10) + R"("}]})";
  }
  for (int i = 0; i < 10; ++i) {
    maps += std::string(i ? "," : "") + R"({"id": "t)" + std::to_string(i) +
            R"(", "class": "Noise", "name": "noise )" + std::to_string(i) + R"("})";
  }
  auto loaded =
      host::memory::LoadSceneText(R"({"format": "orvane-scene/1", "nodes": [)" + nodes + R"(],
      "objects": [{"id": "o", "class": "Box", "superClass": "geometry"}],
      "materials": [)" + materials + R"(], "maps": [)" +
                                      maps + "]}",
                                  ".");
  ASSERT_TRUE(loaded.scene) << loaded.error;
  auto& scene = *loaded.scene;
  TempFolder folder("orvane-builder");
  auto probesRun = [&] {
    size_t count = 0;
    for (const auto& run : scene.scriptsRun)
      count += run.script.find(u"o = mp.output") != std::u16string::npos;
    return count;
  };
  NodeTreeState state;
  for (int build = 1; build <= 2; ++build) {
    BuildResult result = BuildPackage(WriteContext{scene, 0}, scene.files, state,
                                      (folder.path / "1.json").u16string());
    ASSERT_TRUE(result.success);
    EXPECT_EQ(probesRun(), 10u * static_cast<size_t>(build));
  }
}

}  // namespace
}  // namespace orvane
