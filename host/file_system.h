// File access for the core. Paths are host paths in wide text, as they stand in the scene
// ("C:\maps\wood.jpg"); the implementation decides where they live on this machine.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace orvane::host {

class FileSystem {
 public:
  virtual ~FileSystem() = default;
  // Whether anything (file or folder) exists at the path.
  virtual bool Exists(std::u16string_view path) const = 0;
  // The whole file, or nullopt when it cannot be opened or is larger than `maxBytes`.
  virtual std::optional<std::string> ReadBytes(std::u16string_view path,
                                               uint64_t maxBytes) const = 0;
  // Replaces the file with `parts`, one after the other, so that a large file need not be joined
  // in memory first; false on any failure.
  virtual bool WriteParts(std::u16string_view path, std::span<const std::string_view> parts) = 0;
  bool WriteBytes(std::u16string_view path, std::string_view bytes) {
    return WriteParts(path, std::span<const std::string_view>(&bytes, 1));
  }
  // False when the folder could not be made (an existing folder included).
  virtual bool CreateDirectory(std::u16string_view path) = 0;
  // Copies, overwriting an existing destination; false on failure.
  virtual bool CopyFile(std::u16string_view from, std::u16string_view to) = 0;
  virtual bool DeleteFile(std::u16string_view path) = 0;
};

}  // namespace orvane::host
