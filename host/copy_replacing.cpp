#include "host/copy_replacing.h"

#include <system_error>

#ifdef _WIN32
#include <windows.h>
#endif

namespace orvane::host {

bool CopyReplacing(const std::filesystem::path& from, const std::filesystem::path& to) {
#ifdef _WIN32
  return CopyFileW(from.c_str(), to.c_str(), FALSE) != 0;
#else
  std::error_code error;
  return std::filesystem::copy_file(from, to, std::filesystem::copy_options::overwrite_existing,
                                    error);
#endif
}

}  // namespace orvane::host
