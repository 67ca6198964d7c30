#include "host/file_bytes.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "host/memory/scene_file.h"
#include "tests/temp_folder.h"

namespace orvane {
namespace {

namespace fs = std::filesystem;
using testing::TempFolder;

constexpr size_t kPadding = 64;

host::FileBytes OpenOrFail(const fs::path& path) {
  host::FileReadError error = host::FileReadError::kNone;
  host::FileBytes bytes = host::FileBytes::Open(path, kPadding, error);
  EXPECT_EQ(error, host::FileReadError::kNone) << path;
  return bytes;
}

// Whatever the file's size against the page, the padding after it reads as zeros.
TEST(FileBytes, TheBytesAreTheFileAndThePaddingReadsAsZeros) {
  TempFolder folder("orvane-mapped");
  for (size_t size :
       {size_t{0}, size_t{1}, size_t{4096 - kPadding + 1}, size_t{4096}, size_t{3 * 4096 + 17}}) {
    std::string text(size, 'j');
    folder.Write("scene.json", text);
    host::FileBytes bytes = OpenOrFail(folder.path / "scene.json");
    EXPECT_EQ(bytes.bytes(), text) << size;
    const char* end = bytes.bytes().data() + size;
    EXPECT_EQ(std::string(end, kPadding), std::string(kPadding, '\0')) << size;
    EXPECT_FALSE(bytes.CutShort());
  }
}

TEST(FileBytes, WhatIsNotAPlainFileIsRefusedBeforeOpening) {
  TempFolder folder("orvane-mapped");
  host::FileReadError error = host::FileReadError::kNone;
  EXPECT_TRUE(host::FileBytes::Open(folder.path, kPadding, error).bytes().empty());
  EXPECT_EQ(error, host::FileReadError::kFolder);
  host::FileBytes::Open(folder.path / "missing.json", kPadding, error);
  EXPECT_EQ(error, host::FileReadError::kMissing);
#ifndef _WIN32
  host::FileBytes::Open("/dev/zero", kPadding, error);
  EXPECT_EQ(error, host::FileReadError::kNotRegularFile);
#endif
}

#ifdef __linux__
// Another program truncating the file while it is mapped would otherwise end this one with a bus
// error on the next read past the new end.
TEST(FileBytes, AFileCutShortWhileMappedReadsAsZerosAndSaysSo) {
  TempFolder folder("orvane-mapped");
  std::string text(5 * 4096, 'j');
  folder.Write("scene.json", text);
  host::FileBytes bytes = OpenOrFail(folder.path / "scene.json");
  fs::resize_file(folder.path / "scene.json", 4096);
  std::string_view seen = bytes.bytes();
  EXPECT_EQ(seen.substr(0, 4096), text.substr(0, 4096));
  EXPECT_EQ(seen.substr(4096), std::string(4 * 4096, '\0'));
  EXPECT_TRUE(bytes.CutShort());
  bytes.Release();
  EXPECT_TRUE(bytes.bytes().empty());
  EXPECT_TRUE(bytes.CutShort()) << "still known once the bytes are let go of";
}

// A text of many megabytes is read by two threads while it is parsed, the second from the end:
// a cut under either of them reads as zeros, so the parse fails on them instead of the process.
TEST(FileBytes, ALargeTextCutShortWhileParsedFailsTheParseOnly) {
  TempFolder folder("orvane-mapped");
  std::string text =
      R"({"format": "orvane-scene/1", "nodes": [)" + std::string(9 << 20, ' ') + "]}";
  folder.Write("scene.json", text);
  host::FileBytes bytes = OpenOrFail(folder.path / "scene.json");
  fs::resize_file(folder.path / "scene.json", 4096);
  host::memory::SceneLoadResult result =
      host::memory::LoadSceneText(bytes.bytes(), folder.path, kPadding);
  EXPECT_EQ(result.scene, nullptr);
  EXPECT_TRUE(bytes.CutShort());
}
#endif

}  // namespace
}  // namespace orvane
