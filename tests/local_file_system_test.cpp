#include "host/local_file_system.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
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

// A write over the last send's package that fails must leave that package whole and nothing
// beside it, whether the producer hands its bytes over as pieces the sink writes before
// returning or as whole blocks it may write on a second thread.
class FailedWriteOverLastPackage : public ::testing::TestWithParam<bool> {
 protected:
  void SetUp() override { folder_.Write("1.json", "the package of the last send"); }

  bool Write(std::function<void(host::ByteSink&)> produce) {
    return files_.WriteStreamed((folder_.path / "1.json").u16string(), produce);
  }
  void Hand(host::ByteSink& sink, std::string bytes) const {
    if (GetParam()) {
      sink.WriteBlock(bytes);
    } else {
      sink.Write(bytes);
    }
  }
  void ExpectTheLastPackageAlone() const {
    EXPECT_EQ(FileContents(folder_.path / "1.json"), "the package of the last send");
    EXPECT_EQ(FolderEntries(folder_.path), std::vector<fs::path>{"1.json"});
  }

 private:
  TempFolder folder_{"orvane-files"};
  host::LocalFileSystem files_;
};
INSTANTIATE_TEST_SUITE_P(Hands, FailedWriteOverLastPackage, ::testing::Bool(),
                         [](const auto& hand) { return hand.param ? "blocks" : "pieces"; });

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
    EXPECT_FALSE(sink.Failed());
  }));
  EXPECT_EQ(FileContents(folder.path / "1.json"), expected);
}

TEST_P(FailedWriteOverLastPackage, AProducerThatThrows) {
  EXPECT_THROW(Write([this](host::ByteSink& sink) {
                 for (int i = 0; i < 8; ++i)
                   Hand(sink, std::string(128 << 10, 'x'));
                 throw std::runtime_error("a material broke");
               }),
               std::runtime_error);
  ExpectTheLastPackageAlone();
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

TEST_P(FailedWriteOverLastPackage, RunningOutOfRoom) {
  bool written = true, told = false;
  {
    FileSizeLimit limit(64 << 10);
    written = Write([&](host::ByteSink& sink) {
      for (int i = 0; i < 16; ++i)
        Hand(sink, std::string(64 << 10, 'x'));
      // Blocks go to the file on another thread, but by the sixteenth the second has been
      // written, and has failed.
      told = sink.Failed();
    });
  }
  EXPECT_FALSE(written);
  EXPECT_TRUE(told);
  ExpectTheLastPackageAlone();
}
#endif

}  // namespace
}  // namespace orvane
