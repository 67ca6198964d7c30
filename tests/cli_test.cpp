#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include <sys/stat.h>
#include <unistd.h>

#include "cli/commands.h"

namespace orvane::cli {
namespace {

TEST(SceneCheck, SummarisesAGoodSceneAndRejectsABadOne) {
  auto folder = std::filesystem::temp_directory_path() / "orvane-cli-test";
  std::filesystem::create_directories(folder);
  std::ofstream(folder / "good.scene.json") << R"({"format": "orvane-scene/1",
    "nodes": [{"id": "b", "name": "Box", "object": "o", "material": "m"},
              {"id": "l", "name": "Light", "object": "light"}, {"id": "x", "name": "Empty"}],
    "objects": [{"id": "o", "class": "Box", "superClass": "geometry"},
                {"id": "light", "class": "CoronaLight", "superClass": "light"}],
    "materials": [{"id": "m", "class": "CoronaPhysicalMtl", "name": "M"}],
    "maps": [{"id": "t", "class": "Bitmap"}]})";
  std::ofstream(folder / "bad.scene.json")
      << R"({"format": "orvane-scene/1", "nodes": [{"id": 3}]})";

  std::ostringstream out, err;
  std::string good = (folder / "good.scene.json").string();
  EXPECT_EQ(RunSceneCheck({good}, out, err), kExitOk);
  EXPECT_EQ(out.str(), good +
                           ": ok\n  nodes: 3\n  geometry nodes with materials: 1\n"
                           "  materials: 1\n  maps: 1\n  lights: 1\n  cameras: 0\n"
                           "  meshes with vertex colours: 0\n");
  EXPECT_EQ(err.str(), "");

  std::ostringstream out2, err2;
  std::string bad = (folder / "bad.scene.json").string();
  EXPECT_EQ(RunSceneCheck({good, bad}, out2, err2), kExitFailure);
  EXPECT_EQ(err2.str(), "orvane: " + bad + ": nodes[0].id: expected a string\n");

  std::filesystem::remove_all(folder);
}

// Paths that are not scene files must be named as such, never read (a pipe would block, a device
// never ends) and never crash the tool.
TEST(SceneCheck, RefusesWhatIsNotARegularFile) {
  auto folder = std::filesystem::temp_directory_path() / "orvane-cli-not-files";
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  std::string fifo = (folder / "pipe").string();
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  std::ofstream(folder / "plain") << "{}";
  const struct {
    std::string path, says;
  } cases[] = {
      {folder.string(), "is a folder, not a file"},
      {".", "is a folder, not a file"},
      {fifo, "is not a regular file (a device, pipe or socket)"},
      {"/dev/zero", "is not a regular file (a device, pipe or socket)"},
      {(folder / "missing.json").string(), "does not exist"},
      {(folder / "plain" / "below.json").string(), "does not exist"},
  };
  for (const auto& c : cases) {
    std::ostringstream out, err;
    EXPECT_EQ(RunSceneCheck({c.path}, out, err), kExitFailure) << c.path;
    EXPECT_EQ(err.str().rfind("orvane: " + c.path + ": " + c.says, 0), 0u) << err.str();
  }
  if (geteuid() != 0) {  // permissions do not stop root
    std::filesystem::permissions(folder / "plain", std::filesystem::perms::none);
    std::ostringstream out, err;
    EXPECT_EQ(RunSceneCheck({(folder / "plain").string()}, out, err), kExitFailure);
    EXPECT_NE(err.str().find("cannot be read (no permission, or a read error)"), std::string::npos);
  }
  std::filesystem::remove_all(folder);
}

TEST(MaterialCommand, PrintsTheRecordOfTheNamedNodesMaterial) {
  std::string scene = ORVANE_SOURCE_DIR "/examples/interior/interior.scene.json";
  std::ostringstream out, err;
  EXPECT_EQ(RunOrvane({"material", scene, "Sofa"}, out, err), kExitOk) << err.str();
  EXPECT_EQ(out.str().rfind("{\n      \"type\": \"Multimaterial\",\n      \"name\": \"Sofa\",", 0),
            0u);
  EXPECT_NE(out.str().find("\"material_name\": \"Brushed Steel\""), std::string::npos);

  std::ostringstream out2, err2;
  EXPECT_EQ(RunOrvane({"material", scene, "Nothing"}, out2, err2), kExitFailure);
  EXPECT_EQ(err2.str(), "orvane: " + scene + ": no node named \"Nothing\"\n");
  std::ostringstream out3, err3;
  EXPECT_EQ(RunOrvane({"material", scene}, out3, err3), kExitUsage);
}

TEST(Orvane, AnswersHelpAndVersionAndRefusesBadUsageWithExitCodeTwo) {
  const struct {
    std::vector<std::string> args;
    int exitCode;
    const char* output;  // expected at the start of standard output or error
  } cases[] = {
      {{"--help"}, kExitOk, "usage: orvane"},
      {{"--version"}, kExitOk, "orvane " ORVANE_VERSION "\n"},
      {{}, kExitUsage, "orvane: no command given"},
      {{"frobnicate"}, kExitUsage, "orvane: unknown command \"frobnicate\""},
      {{"scene"},
       kExitUsage,
       "orvane: expected: orvane scene check FILE... or orvane scene generate"},
      {{"scene", "check"}, kExitUsage, "orvane: scene check needs at least one scene file"},
  };
  for (const auto& c : cases) {
    std::ostringstream out, err;
    EXPECT_EQ(RunOrvane(c.args, out, err), c.exitCode) << c.output;
    std::string shown = c.exitCode == kExitOk ? out.str() : err.str();
    EXPECT_EQ(shown.rfind(c.output, 0), 0u) << shown;
  }
}

}  // namespace
}  // namespace orvane::cli

namespace orvane::cli {
namespace {

TEST(PackageCommand, MakesTheFolderItWritesIntoOrSaysWhyItCannot) {
  auto folder = std::filesystem::temp_directory_path() / "orvane-package-folder";
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  std::string scene = ORVANE_SOURCE_DIR "/examples/studio/studio.scene.json";

  std::string nested = (folder / "job" / "deeper" / "1.json").string();
  std::ostringstream out, err;
  EXPECT_EQ(RunOrvane({"package", scene, "-o", nested}, out, err), kExitOk) << err.str();
  EXPECT_TRUE(std::filesystem::is_regular_file(nested));
  EXPECT_TRUE(std::filesystem::is_regular_file(folder / "job" / "deeper" / "1.log"));

  std::ofstream(folder / "blocker") << "a file, not a folder";
  std::string blocked = (folder / "blocker" / "1.json").string();
  std::ostringstream out2, err2;
  EXPECT_EQ(RunOrvane({"package", scene, "-o", blocked}, out2, err2), kExitFailure);
  EXPECT_EQ(err2.str().rfind("orvane: cannot make the folder " + (folder / "blocker").string() +
                                 " for the package: ",
                             0),
            0u)
      << err2.str();

  std::ostringstream out3, err3;
  EXPECT_EQ(RunOrvane({"package", scene, "-o", folder.string()}, out3, err3), kExitFailure);
  EXPECT_NE(err3.str().find("the path is not a writable file"), std::string::npos) << err3.str();
  std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace orvane::cli

namespace orvane::cli {
namespace {

// The preparation commands on the bundled interior: a real FBX file, the textures it ships with
// and the one it lacks, and a prepared scene that still finds its files from another folder.
TEST(PrepCommands, ExportCollectAndPrepareTheInterior) {
  namespace fs = std::filesystem;
  fs::path folder = fs::temp_directory_path() / "orvane-prep-commands";
  fs::remove_all(folder);
  std::string scene = ORVANE_SOURCE_DIR "/examples/interior/interior.scene.json";

  std::ostringstream out, err;
  std::string fbx = (folder / "job" / "Loft.fbx").string();
  EXPECT_EQ(RunOrvane({"fbx", scene, "-o", fbx}, out, err), kExitOk) << err.str();
  std::ifstream file(fbx, std::ios::binary);
  std::string head(23, '\0');
  file.read(head.data(), 23);
  EXPECT_EQ(head, std::string("Kaydara FBX Binary  \0\x1a\0", 23));

  std::ostringstream out2, err2;
  std::string job = (folder / "job").string();
  EXPECT_EQ(RunOrvane({"textures", scene, "--job", job}, out2, err2), kExitOk) << err2.str();
  EXPECT_EQ(out2.str(), "textures: " + job + "/textures\ncopied: 3\nMissing: rug_pattern.jpg\n");
  EXPECT_TRUE(fs::is_regular_file(folder / "job" / "textures" / "oak_diffuse.jpg"));

  std::ostringstream out3, err3;
  std::string prepared = (folder / "elsewhere" / "interior.scene.json").string();
  EXPECT_EQ(RunOrvane({"prep", scene, "-o", prepared}, out3, err3), kExitOk) << err3.str();
  EXPECT_NE(out3.str().find("material renamed: \"Oak Furniture\" -> \"Oak_Furniture\"\n"),
            std::string::npos)
      << out3.str();
  std::ostringstream out4, err4;
  EXPECT_EQ(RunOrvane({"textures", prepared, "--job", job}, out4, err4), kExitOk);
  EXPECT_EQ(out4.str(), out2.str());

  std::ostringstream out5, err5;
  EXPECT_EQ(RunOrvane({"fbx", scene}, out5, err5), kExitUsage);
  fs::remove_all(folder);
}

}  // namespace
}  // namespace orvane::cli
