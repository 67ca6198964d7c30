#include "host/local_file_system.h"

#include <fstream>
#include <system_error>

#include "base/wide_text.h"
#include "host/copy_replacing.h"
#include "host/file_read.h"
#include "host/overlapped_file_sink.h"

namespace orvane::host {

namespace fs = std::filesystem;

void LocalFileSystem::AddAlias(std::u16string_view hostPath, fs::path localPath) {
  aliases_[LowerAscii(hostPath)] = std::move(localPath);
}

fs::path LocalFileSystem::ToLocalPath(std::u16string_view hostPath) const {
  auto alias = aliases_.find(LowerAscii(hostPath));
  if (alias != aliases_.end()) return alias->second;
#ifdef _WIN32
  return fs::path(std::u16string(hostPath));
#else
  std::string local = ToUtf8(hostPath);
  for (char& c : local) {
    if (c == '\\') c = '/';
  }
  return fs::path(local);
#endif
}

bool LocalFileSystem::Exists(std::u16string_view path) const {
  std::error_code error;
  return !path.empty() && fs::exists(ToLocalPath(path), error);
}

std::optional<std::string> LocalFileSystem::ReadBytes(std::u16string_view path,
                                                      uint64_t maxBytes) const {
  return ReadRegularFile(ToLocalPath(path), maxBytes).bytes;
}

namespace {

bool WriteInPlace(const fs::path& file, const std::function<void(ByteSink&)>& produce) {
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  if (!out) return false;
  {
    OverlappedFileSink sink(out);
    produce(sink);
  }  // every block is written once the sink is gone
  out.close();
  return !out.fail();
}

// Files only, like the kernel's DeleteFileW: a folder of that name stays. A link is removed
// itself, never what it leads to.
bool RemoveFileOnly(const fs::path& file) {
  std::error_code error;
  return !fs::is_directory(fs::symlink_status(file, error)) && fs::remove(file, error);
}

}  // namespace

// A plain file is written beside itself and renamed over the old one only once every byte is
// out, so a write that fails half way (a full disk, a producer that throws) leaves no truncated
// document behind. Devices, links and anything else that is not a plain file are written where
// they stand: renaming over them would replace the link or the device itself.
bool LocalFileSystem::WriteStreamed(std::u16string_view path,
                                    const std::function<void(ByteSink&)>& produce) {
  fs::path file = ToLocalPath(path);
  std::error_code error;
  fs::file_type type = fs::symlink_status(file, error).type();
  if (type != fs::file_type::not_found && type != fs::file_type::regular) {
    return WriteInPlace(file, produce);
  }
  fs::path writing = file;
  writing += ".writing";
  // What an interrupted write left there goes first: a link there would lead this write into
  // another file.
  RemoveFileOnly(writing);
  bool written = false;
  try {
    written = WriteInPlace(writing, produce);
  } catch (...) {
    RemoveFileOnly(writing);
    throw;
  }
  if (written) {
    fs::rename(writing, file, error);
    if (!error) return true;
  }
  RemoveFileOnly(writing);
  return false;
}

bool LocalFileSystem::CreateDirectory(std::u16string_view path) {
  std::error_code error;
  return fs::create_directory(ToLocalPath(path), error);
}

bool LocalFileSystem::CopyFile(std::u16string_view from, std::u16string_view to) {
  return CopyReplacing(ToLocalPath(from), ToLocalPath(to));
}

bool LocalFileSystem::DeleteFile(std::u16string_view path) {
  return RemoveFileOnly(ToLocalPath(path));
}

}  // namespace orvane::host
