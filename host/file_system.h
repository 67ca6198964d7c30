// File access for the core. Paths are host paths in wide text, as they stand in the scene
// ("C:\maps\wood.jpg"); the implementation decides where they live on this machine.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace orvane::host {

// Where a file's bytes go while they are being produced.
class ByteSink {
 public:
  virtual void Write(std::string_view bytes) = 0;
  // Writes a whole block and leaves `block` empty for the next one. A sink that writes on another
  // thread keeps the block and gives back a buffer it has finished with instead of copying.
  virtual void WriteBlock(std::string& block) {
    Write(block);
    block.clear();
  }
  // True once a write has failed (a full disk): nothing handed over since reaches the file, so a
  // producer may stop early. A sink writing on another thread may tell a little late.
  virtual bool Failed() const = 0;

 protected:
  ~ByteSink() = default;
};

class FileSystem {
 public:
  virtual ~FileSystem() = default;
  // Whether anything (file or folder) exists at the path.
  virtual bool Exists(std::u16string_view path) const = 0;
  // The whole file, or nullopt when it cannot be opened or is larger than `maxBytes`.
  virtual std::optional<std::string> ReadBytes(std::u16string_view path,
                                               uint64_t maxBytes) const = 0;
  // Replaces the file with what `produce` writes into the sink, so that a document of hundreds of
  // megabytes never has to be held whole; false on any failure. When `produce` throws, the file
  // is left as it was and the exception goes on.
  virtual bool WriteStreamed(std::u16string_view path,
                             const std::function<void(ByteSink&)>& produce) = 0;
  bool WriteBytes(std::u16string_view path, std::string_view bytes) {
    return WriteStreamed(path, [bytes](ByteSink& sink) { sink.Write(bytes); });
  }
  // False when the folder could not be made (an existing folder included).
  virtual bool CreateDirectory(std::u16string_view path) = 0;
  // Copies, overwriting an existing destination; false on failure.
  virtual bool CopyFile(std::u16string_view from, std::u16string_view to) = 0;
  virtual bool DeleteFile(std::u16string_view path) = 0;
};

}  // namespace orvane::host
