// A file system that passes every call on to another, for wrappers that watch or change a few.
#pragma once

#include "host/file_system.h"

namespace orvane::host {

class ForwardingFileSystem : public FileSystem {
 public:
  explicit ForwardingFileSystem(FileSystem& inner) : inner_(inner) {}
  bool Exists(std::u16string_view path) const override { return inner_.Exists(path); }
  std::optional<std::string> ReadBytes(std::u16string_view path, uint64_t maxBytes) const override {
    return inner_.ReadBytes(path, maxBytes);
  }
  bool WriteStreamed(std::u16string_view path,
                     const std::function<void(ByteSink&)>& produce) override {
    return inner_.WriteStreamed(path, produce);
  }
  bool CreateDirectory(std::u16string_view path) override { return inner_.CreateDirectory(path); }
  bool CopyFile(std::u16string_view from, std::u16string_view to) override {
    return inner_.CopyFile(from, to);
  }
  bool DeleteFile(std::u16string_view path) override { return inner_.DeleteFile(path); }

 protected:
  FileSystem& inner_;
};

}  // namespace orvane::host
