#include "host/file_read.h"

#include <fstream>
#include <system_error>

#include "base/huge_pages.h"

namespace orvane::host {

namespace fs = std::filesystem;

namespace {

FileReadError Refusal(const fs::file_status& status) {
  switch (status.type()) {
    case fs::file_type::regular: return FileReadError::kNone;
    case fs::file_type::directory: return FileReadError::kFolder;
    case fs::file_type::not_found: return FileReadError::kMissing;
    default: return FileReadError::kNotRegularFile;
  }
}

}  // namespace

FileReadError CheckRegularFile(const fs::path& path) {
  std::error_code error;
  fs::file_status status = fs::status(path, error);
  if (error && status.type() != fs::file_type::not_found) return FileReadError::kUnreadable;
  return Refusal(status);
}

FileRead ReadRegularFile(const fs::path& path, uint64_t maxBytes, size_t spareCapacity) {
  if (FileReadError refusal = CheckRegularFile(path); refusal != FileReadError::kNone)
    return {{}, refusal};
  std::error_code error;
  uintmax_t size = fs::file_size(path, error);
  if (error) return {{}, FileReadError::kUnreadable};
  if (size > maxBytes) return {{}, FileReadError::kTooLarge};

  std::ifstream in(path, std::ios::binary);
  if (!in) return {{}, FileReadError::kUnreadable};
  // Read until the end rather than trusting the size: the file may change while it is read.
  std::string bytes;
  bytes.reserve(static_cast<size_t>(size) + spareCapacity);
  AdviseHugePages(bytes.data(), bytes.capacity());
  bytes.resize(static_cast<size_t>(size));
  in.read(bytes.data(), static_cast<std::streamsize>(size));
  bytes.resize(static_cast<size_t>(in.gcount()));
  char chunk[64 * 1024];
  while (in && (in.read(chunk, sizeof chunk) || in.gcount() > 0)) {
    if (bytes.size() + static_cast<size_t>(in.gcount()) > maxBytes) {
      return {{}, FileReadError::kTooLarge};
    }
    bytes.append(chunk, static_cast<size_t>(in.gcount()));
  }
  if (in.bad()) return {{}, FileReadError::kUnreadable};
  bytes.reserve(bytes.size() + spareCapacity);  // only reallocates if the file grew
  return {std::move(bytes), FileReadError::kNone};
}

std::string DescribeFileReadError(FileReadError error) {
  switch (error) {
    case FileReadError::kNone: return "was read";
    case FileReadError::kMissing: return "does not exist";
    case FileReadError::kFolder: return "is a folder, not a file";
    case FileReadError::kNotRegularFile: return "is not a regular file (a device, pipe or socket)";
    case FileReadError::kTooLarge: return "is larger than this reader accepts";
    case FileReadError::kUnreadable: return "cannot be read (no permission, or a read error)";
  }
  return "cannot be read";
}

}  // namespace orvane::host
