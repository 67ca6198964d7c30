// A fresh folder for one test process, removed when the test ends, and reading a file back.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "host/file_read.h"

namespace orvane::testing {

struct TempFolder {
  explicit TempFolder(const std::string& name = "orvane-test")
      : path(std::filesystem::temp_directory_path() / (name + "-" + std::to_string(getpid()))) {
    std::filesystem::remove_all(path);
    std::filesystem::create_directories(path);
  }
  ~TempFolder() { std::filesystem::remove_all(path); }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  void Write(const std::string& relative, const std::string& text) const {
    std::filesystem::create_directories((path / relative).parent_path());
    std::ofstream(path / relative, std::ios::binary) << text;
  }

  std::filesystem::path path;
};

// The file's bytes, or "(unreadable)".
inline std::string FileContents(const std::filesystem::path& file) {
  return host::ReadRegularFile(file, 1 << 26).bytes.value_or("(unreadable)");
}

}  // namespace orvane::testing
