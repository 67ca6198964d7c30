#include "host/local_file_system.h"

#include <gtest/gtest.h>

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

TEST(LocalFileSystem, AProducerThatThrowsLeavesTheOldFileWholeAndNothingElse) {
  TempFolder folder("orvane-files");
  folder.Write("1.json", "the package of the last send");
  host::LocalFileSystem files;
  auto failHalfWay = [](host::ByteSink& sink) {
    sink.Write(std::string(1 << 20, 'x'));
    throw std::runtime_error("a material broke");
  };
  EXPECT_THROW(files.WriteStreamed((folder.path / "1.json").u16string(), failHalfWay),
               std::runtime_error);
  EXPECT_EQ(FileContents(folder.path / "1.json"), "the package of the last send");
  EXPECT_EQ(FolderEntries(folder.path), std::vector<fs::path>{"1.json"});
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
  TempFolder folder("orvane-files");
  folder.Write("1.json", "the package of the last send");
  host::LocalFileSystem files;
  std::string large(1 << 20, 'x');
  bool written = true;
  {
    FileSizeLimit limit(64 << 10);
    written = files.WriteBytes((folder.path / "1.json").u16string(), large);
  }
  EXPECT_FALSE(written);
  EXPECT_EQ(FileContents(folder.path / "1.json"), "the package of the last send");
  EXPECT_EQ(FolderEntries(folder.path), std::vector<fs::path>{"1.json"});
}
#endif

}  // namespace
}  // namespace orvane
