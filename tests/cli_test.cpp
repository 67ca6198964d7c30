#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

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
  std::ofstream(folder / "bad.scene.json") << R"({"format": "orvane-scene/1", "nodes": [{"id": 3}]})";

  std::ostringstream out, err;
  std::string good = (folder / "good.scene.json").string();
  EXPECT_EQ(RunSceneCheck({good}, out, err), kExitOk);
  EXPECT_EQ(out.str(), good + ": ok\n  nodes: 3\n  geometry nodes with materials: 1\n"
                              "  materials: 1\n  maps: 1\n  lights: 1\n  cameras: 0\n");
  EXPECT_EQ(err.str(), "");

  std::ostringstream out2, err2;
  std::string bad = (folder / "bad.scene.json").string();
  EXPECT_EQ(RunSceneCheck({good, bad}, out2, err2), kExitFailure);
  EXPECT_EQ(err2.str(), "orvane: " + bad + ": nodes[0].id: expected a string\n");

  std::ostringstream out3, err3;
  EXPECT_EQ(RunSceneCheck({(folder / "missing.json").string()}, out3, err3), kExitFailure);
  EXPECT_NE(err3.str().find("cannot open"), std::string::npos);
  std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace orvane::cli
