// Folders the commands write into.
#pragma once

#include <filesystem>
#include <iosfwd>

namespace orvane::cli {

// Makes `folder` (and the folders above it) unless it exists, as any tool that writes a file
// would. On failure says why on `err`, naming `purpose` ("the package"), and answers false.
bool MakeFolder(const std::filesystem::path& folder, const char* purpose, std::ostream& err);

}  // namespace orvane::cli
