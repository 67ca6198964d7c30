#include "host/local_file_system.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/temp_folder.h"

#ifndef _WIN32
#include <sys/resource.h>

#include <csignal>
#endif

namespace orvane {
namespace {

namespace fs = std::filesystem;
using testing::FileContents;
using testing::TempFolder;

std::vector<fs::path> FolderEntries(const fs::path& folder) {
  std::vector<fs::path> entries;
  for (const auto& entry : fs::directory_iterator(folder))
    entries.push_back(entry.path().filename());
  return entries;
}

TEST(LocalFileSystem, WritingReplacesTheFileAndLeavesNothingElse) {
  TempFolder folder("orvane-files");
  folder.Write("1.json", "an older, longer package");
  host::LocalFileSystem files;
  ASSERT_TRUE(files.WriteStreamed((folder.path / "1.json").u16string(), [](host::ByteSink& sink) {
    for (std::string_view part : {"{\n", "  \"objects\": []", "\n}"})
      sink.Write(part);
  }));
  EXPECT_EQ(FileContents(folder.path / "1.json"), "{\n  \"objects\": []\n}");
  EXPECT_EQ(FolderEntries(folder.path), std::vector<fs::path>{"1.json"});
}

// Bytes reach a sink as pieces it writes before returning, or as whole blocks it may write on
// a second thread; a write must end the same either way.
using Hand = void (*)(host::ByteSink&, std::string);
const std::pair<const char*, Hand> kHands[] = {
    {"pieces", [](host::ByteSink& sink, std::string bytes) { sink.Write(bytes); }},
    {"blocks", [](host::ByteSink& sink, std::string bytes) { sink.WriteBlock(bytes); }},
};

TEST(LocalFileSystem, BlocksHandedOverReachTheFileInOrderWithThePiecesBetween) {
  TempFolder folder("orvane-files");
  host::LocalFileSystem files;
  std::string expected;
  ASSERT_TRUE(files.WriteStreamed((folder.path / "1.json").u16string(), [&](host::ByteSink& sink) {
    sink.Write("[");
    expected = "[";
    for (int i = 0; i < 64; ++i) {
      std::string block(1000 + 37 * i, static_cast<char>('a' + i % 26));
      expected += block;
      sink.WriteBlock(block);
      EXPECT_TRUE(block.empty()) << "block " << i;
      if (i % 5 == 0) {
        sink.Write(std::to_string(i));
        expected += std::to_string(i);
      }
    }
  }));
  EXPECT_EQ(FileContents(folder.path / "1.json"), expected);
}

TEST(LocalFileSystem, AProducerThatThrowsLeavesTheOldFileWholeAndNothingElse) {
  for (auto [name, hand] : kHands) {
    SCOPED_TRACE(name);
    TempFolder folder("orvane-files");
    folder.Write("1.json", "the package of the last send");
    host::LocalFileSystem files;
    auto failHalfWay = [hand](host::ByteSink& sink) {
      for (int i = 0; i < 8; ++i)
        hand(sink, std::string(128 << 10, 'x'));
      throw std::runtime_error("a material broke");
    };
    EXPECT_THROW(files.WriteStreamed((folder.path / "1.json").u16string(), failHalfWay),
                 std::runtime_error);
    EXPECT_EQ(FileContents(folder.path / "1.json"), "the package of the last send");
    EXPECT_EQ(FolderEntries(folder.path), std::vector<fs::path>{"1.json"});
  }
}

TEST(LocalFileSystem, AFolderWhereTheFileShouldBeIsLeftAlone) {
  TempFolder folder("orvane-files");
  folder.Write("1.json/inside.txt", "kept");
  host::LocalFileSystem files;
  EXPECT_FALSE(files.WriteBytes((folder.path / "1.json").u16string(), "{}"));
  EXPECT_EQ(FileContents(folder.path / "1.json" / "inside.txt"), "kept");
  EXPECT_EQ(FolderEntries(folder.path), std::vector<fs::path>{"1.json"});
}

#ifndef _WIN32
// Lets this process write files of at most `bytes`; a longer write fails as on a full disk.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    getrlimit(RLIMIT_FSIZE, &saved_);
    previousHandler_ = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit = saved_;
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &saved_);
    std::signal(SIGXFSZ, previousHandler_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit saved_{};
  void (*previousHandler_)(int) = nullptr;
};

TEST(LocalFileSystem, ALinkLeftWhereTheFileIsWrittenFirstLeadsNowhere) {
  TempFolder folder("orvane-files");
  folder.Write("elsewhere.txt", "not ours");
  fs::create_symlink(folder.path / "elsewhere.txt", folder.path / "1.json.writing");
  host::LocalFileSystem files;
  ASSERT_TRUE(files.WriteBytes((folder.path / "1.json").u16string(), "{}"));
  EXPECT_EQ(FileContents(folder.path / "elsewhere.txt"), "not ours");
  EXPECT_EQ(FileContents(folder.path / "1.json"), "{}");
  EXPECT_FALSE(fs::exists(fs::symlink_status(folder.path / "1.json.writing")));
}

TEST(LocalFileSystem, AWriteThatRunsOutOfRoomKeepsTheOldFileWhole) {
  for (auto [name, hand] : kHands) {
    SCOPED_TRACE(name);
    TempFolder folder("orvane-files");
    folder.Write("1.json", "the package of the last send");
    host::LocalFileSystem files;
    bool written = true;
    {
      FileSizeLimit limit(64 << 10);
      written = files.WriteStreamed((folder.path / "1.json").u16string(), [hand](auto& sink) {
        for (int i = 0; i < 16; ++i)
          hand(sink, std::string(64 << 10, 'x'));
      });
    }
    EXPECT_FALSE(written);
    EXPECT_EQ(FileContents(folder.path / "1.json"), "the package of the last send");
    EXPECT_EQ(FolderEntries(folder.path), std::vector<fs::path>{"1.json"});
  }
}
#endif

}  // namespace
}  // namespace orvane
