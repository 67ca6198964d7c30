// Copying a file over one that may already exist.
#pragma once

#include <filesystem>

namespace orvane::host {

// True when `to` now holds a copy of `from`, replacing what was there. The standard library's
// copy_file cannot replace an existing file in its Windows build, so Windows copies with its own
// file function.
bool CopyReplacing(const std::filesystem::path& from, const std::filesystem::path& to);

}  // namespace orvane::host
