// The `orvane` command's subcommands. Each returns the process exit code.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace orvane::cli {

inline constexpr int kExitOk = 0;
inline constexpr int kExitFailure = 1;
inline constexpr int kExitUsage = 2;

// `orvane scene check FILE...`
int RunSceneCheck(const std::vector<std::string>& files, std::ostream& out, std::ostream& err);

}  // namespace orvane::cli
