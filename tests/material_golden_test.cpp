// Whole material records against reviewed golden files. To rewrite the goldens after an
// intended change: ORVANE_UPDATE_GOLDEN=1 build/dev/tests/orvane_tests
// --gtest_filter='MaterialGolden.*' and review the diff.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "base/wide_text.h"
#include "graph/class_dispatch.h"
#include "host/memory/scene_file.h"
#include "host/scene_walk.h"
#include "package/material_record.h"

namespace orvane {
namespace {

namespace fs = std::filesystem;

std::string RecordOfObject(const fs::path& sceneFile) {
  auto loaded = host::memory::LoadSceneFile(sceneFile);
  EXPECT_TRUE(loaded.scene) << loaded.error;
  if (!loaded.scene) return {};
  for (host::INode* node : ListSceneNodes(*loaded.scene)) {
    if (node->GetName() != u"Object") continue;
    WriteContext context{*loaded.scene, loaded.scene->GetTime()};
    NodeTreeState state;
    std::vector<std::u16string> errors;
    std::string record;
    AppendMaterialRecord(context, state, node->GetMtl(), errors, record);
    return record + "\n";
  }
  ADD_FAILURE() << sceneFile << " has no node named Object";
  return {};
}

TEST(MaterialGolden, RecordsMatchTheReviewedFiles) {
  const fs::path scenes = fs::path(ORVANE_TEST_DATA) / "materials";
  const fs::path goldens = fs::path(ORVANE_TEST_DATA) / "golden";
  bool update = std::getenv("ORVANE_UPDATE_GOLDEN") != nullptr;
  int compared = 0;
  for (const auto& entry : fs::directory_iterator(scenes)) {
    std::string stem = entry.path().filename().string();
    stem = stem.substr(0, stem.find('.'));
    fs::path golden = goldens / (stem + ".material.json");
    std::string actual = RecordOfObject(entry.path());
    if (update) std::ofstream(golden, std::ios::binary) << actual;
    std::ifstream in(golden, std::ios::binary);
    ASSERT_TRUE(in) << "no golden file " << golden << " (run with ORVANE_UPDATE_GOLDEN=1)";
    std::stringstream expected;
    expected << in.rdbuf();
    EXPECT_EQ(actual, expected.str()) << stem;
    EXPECT_TRUE(nlohmann::json::accept(expected.str())) << stem << " is not valid JSON";
    ++compared;
  }
  EXPECT_GE(compared, 8);
}

}  // namespace
}  // namespace orvane

namespace orvane {
namespace {

// The format reference's writer section is generated from the writer tables.
TEST(MaterialGolden, TheWriterReferenceMatchesTheTables) {
  const fs::path document = fs::path(ORVANE_SOURCE_DIR) / "docs" / "package-format.md";
  std::ifstream in(document, std::ios::binary);
  ASSERT_TRUE(in);
  std::stringstream text;
  text << in.rdbuf();
  std::string content = text.str();
  const std::string begin = "<!-- writers:begin -->\n", end = "<!-- writers:end -->";
  size_t from = content.find(begin), to = content.find(end);
  ASSERT_NE(from, std::string::npos);
  ASSERT_NE(to, std::string::npos);
  from += begin.size();
  std::string generated = FormatWriterReference();
  if (std::getenv("ORVANE_UPDATE_GOLDEN") != nullptr) {
    content.replace(from, to - from, generated);
    std::ofstream(document, std::ios::binary) << content;
    return;
  }
  EXPECT_EQ(content.substr(from, to - from), generated);
}

}  // namespace
}  // namespace orvane
