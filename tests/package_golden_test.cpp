// Whole packages (1.json and 1.log) against reviewed golden files, for the bundled examples and
// focused scenes. Rewrite after an intended change with
// ORVANE_UPDATE_GOLDEN=1 build/dev/tests/orvane_tests --gtest_filter='PackageGolden.*'
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "host/memory/scene_file.h"
#include "package/package_builder.h"

namespace orvane {
namespace {

namespace fs = std::filesystem;

std::string ReadText(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

void CompareWithGolden(const std::string& actual, const fs::path& golden, bool update) {
  if (update) std::ofstream(golden, std::ios::binary) << actual;
  ASSERT_TRUE(fs::exists(golden)) << golden << " (run with ORVANE_UPDATE_GOLDEN=1)";
  EXPECT_EQ(actual, ReadText(golden)) << golden;
}

TEST(PackageGolden, PackagesMatchTheReviewedFiles) {
  std::vector<fs::path> scenes;
  for (const auto& entry : fs::directory_iterator(fs::path(ORVANE_TEST_DATA) / "packages")) {
    if (entry.path().string().ends_with(".scene.json")) scenes.push_back(entry.path());
  }
  for (const auto& entry :
       fs::recursive_directory_iterator(fs::path(ORVANE_SOURCE_DIR) / "examples")) {
    if (entry.path().string().ends_with(".scene.json")) scenes.push_back(entry.path());
  }
  const fs::path goldens = fs::path(ORVANE_TEST_DATA) / "golden" / "packages";
  const fs::path out =
      fs::temp_directory_path() / ("orvane-packages-" + std::to_string(::getpid()));
  fs::create_directories(out);
  bool update = std::getenv("ORVANE_UPDATE_GOLDEN") != nullptr;
  for (const fs::path& scene : scenes) {
    std::string stem = scene.filename().string();
    stem = stem.substr(0, stem.find('.'));
    auto loaded = host::memory::LoadSceneFile(scene);
    ASSERT_TRUE(loaded.scene) << loaded.error;
    NodeTreeState state;
    fs::path document = out / (stem + ".json");
    BuildResult result = BuildPackage(WriteContext{*loaded.scene, loaded.scene->GetTime()},
                                      loaded.scene->files, state, document.u16string());
    ASSERT_TRUE(result.success) << stem;
    std::string package = ReadText(document);
    EXPECT_TRUE(nlohmann::json::accept(package)) << stem << " is not valid JSON";
    CompareWithGolden(package, goldens / (stem + ".1.json"), update);
    CompareWithGolden(ReadText(out / (stem + ".log")), goldens / (stem + ".1.log"), update);
  }
  fs::remove_all(out);
  EXPECT_GE(scenes.size(), 6u);
}

}  // namespace
}  // namespace orvane
