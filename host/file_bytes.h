// A whole file laid into memory for reading, for files of hundreds of megabytes.
#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "host/file_read.h"

namespace orvane::host {

// Where the system allows, the file's pages are mapped rather than copied: the copy would be as
// much fresh memory again, and on a virtual machine first touching fresh memory is slower than
// reading the file. Elsewhere, or where mapping fails, the bytes are read into memory.
//
// A mapped file that another program cuts short while it is read must not stop this one: the
// pages past its new end read as zeros from then on, and `CutShort` says so afterwards.
class FileBytes {
 public:
  // `padding`: bytes after the end that may be read (as zeros), for parsers that read in wide
  // steps. The same refusals as ReadRegularFile: folders, devices, pipes.
  static FileBytes Open(const std::filesystem::path& path, size_t padding, FileReadError& error);

  FileBytes(FileBytes&&) noexcept;
  FileBytes& operator=(FileBytes&&) noexcept;
  ~FileBytes();

  std::string_view bytes() const { return bytes_; }
  // Lets go of the bytes; `bytes()` is empty afterwards.
  void Release();
  // Whether the file was cut short while it was mapped, up to now.
  bool CutShort() const;

  struct Mapping;  // the system's mapping; defined where files can be mapped

 private:
  FileBytes() = default;

  std::string_view bytes_;
  std::string read_;                  // the bytes, where the file was read rather than mapped
  std::unique_ptr<Mapping> mapping_;  // null where it was read
  bool cutShort_ = false;             // kept past Release
};

}  // namespace orvane::host
