// The scene package 1.json and its log 1.log.
#pragma once

#include <cstdint>
#include <string_view>

#include "graph/node_tree.h"
#include "host/file_system.h"

namespace orvane {

struct BuildResult {
  bool success = false;     // the document was written without a stream error
  int32_t objectCount = 0;  // object records written; 0 on failure
  int32_t logLineCount = 0;
};

// Writes the package to `documentPath` and, after a good write, the log beside it. Renames
// duplicate object names in the scene (for good: the names the package uses).
BuildResult BuildPackage(const WriteContext& context, host::FileSystem& files, NodeTreeState& state,
                         std::u16string_view documentPath);

// The log file's path: the document path with the text after its last "." replaced by "log".
std::u16string LogPathFor(std::u16string_view documentPath);

}  // namespace orvane
