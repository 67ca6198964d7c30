#include "cli/output_folder.h"

#include <ostream>
#include <system_error>

namespace orvane::cli {

bool MakeFolder(const std::filesystem::path& folder, const char* purpose, std::ostream& err) {
  std::error_code error;
  if (folder.empty() || std::filesystem::is_directory(folder) ||
      std::filesystem::create_directories(folder, error)) {
    return true;
  }
  err << "orvane: cannot make the folder " << folder.string() << " for " << purpose << ": "
      << (error ? error.message() : "a file of that name is in the way") << "\n";
  return false;
}

}  // namespace orvane::cli
