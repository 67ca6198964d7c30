// Reading a whole file from this machine's disk. Paths users type or scenes name can point at a
// folder, a device or a pipe: those are refused before anything is opened (opening a pipe would
// wait for a writer, and a device such as /dev/zero never ends), and a read never allocates more
// than the file really holds.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace orvane::host {

enum class FileReadError { kNone, kMissing, kFolder, kNotRegularFile, kTooLarge, kUnreadable };

struct FileRead {
  std::optional<std::string> bytes;  // set exactly when error is kNone
  FileReadError error = FileReadError::kNone;
};

// kNone for a plain file; otherwise why it is refused (missing, a folder, a device or pipe).
FileReadError CheckRegularFile(const std::filesystem::path& path);

// spareCapacity: bytes the returned text keeps allocated beyond its end, for parsers that read
// past it in wide steps.
FileRead ReadRegularFile(const std::filesystem::path& path, uint64_t maxBytes,
                         size_t spareCapacity = 0);

// "does not exist", "is a folder, not a file", … — to follow the path in a message.
std::string DescribeFileReadError(FileReadError error);

}  // namespace orvane::host
