// Host paths on this machine's disk.
#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "host/file_system.h"

namespace orvane::host {

// Maps host paths to local files. An alias table first maps whole host paths (compared without
// regard to ASCII case, as the host's file system does) to local files, so a scene that names
// "C:\ies\lamp.ies" can be replayed on a machine with the file somewhere else. Any other path
// is used as it stands; off Windows its backslashes become slashes.
class LocalFileSystem final : public FileSystem {
 public:
  void AddAlias(std::u16string_view hostPath, std::filesystem::path localPath);
  std::filesystem::path ToLocalPath(std::u16string_view hostPath) const;

  bool Exists(std::u16string_view path) const override;
  std::optional<std::string> ReadBytes(std::u16string_view path, uint64_t maxBytes) const override;
  bool WriteStreamed(std::u16string_view path,
                     const std::function<void(ByteSink&)>& produce) override;
  bool CreateDirectory(std::u16string_view path) override;
  bool CopyFile(std::u16string_view from, std::u16string_view to) override;
  bool DeleteFile(std::u16string_view path) override;

 private:
  std::map<std::u16string, std::filesystem::path> aliases_;  // keys folded to lower case
};

}  // namespace orvane::host
