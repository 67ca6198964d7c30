// orvane: the scene hand-over tool without the host application, driven by scene files.
#include <iostream>
#include <string>
#include <vector>

#include "cli/commands.h"

namespace {

constexpr char kUsage[] =
    "usage: orvane <command> [arguments]\n"
    "\n"
    "commands:\n"
    "  scene check FILE...   load scene files and print what they hold\n"
    "\n"
    "options:\n"
    "  --help                show this text\n"
    "  --version             show the version\n"
    "\n"
    "Exit status: 0 on success, 1 when a scene is rejected, 2 for bad usage.\n";

int UsageError(const std::string& message) {
  std::cerr << "orvane: " << message << "\n\n" << kUsage;
  return orvane::cli::kExitUsage;
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> args(argv + 1, argv + argc);
  if (args.empty()) return UsageError("no command given");
  if (args[0] == "--help" || args[0] == "-h") {
    std::cout << kUsage;
    return orvane::cli::kExitOk;
  }
  if (args[0] == "--version") {
    std::cout << "orvane " << ORVANE_VERSION << "\n";
    return orvane::cli::kExitOk;
  }
  if (args[0] == "scene") {
    if (args.size() < 2 || args[1] != "check") return UsageError("expected: orvane scene check FILE...");
    if (args.size() < 3) return UsageError("scene check needs at least one scene file");
    return orvane::cli::RunSceneCheck({args.begin() + 2, args.end()}, std::cout, std::cerr);
  }
  return UsageError("unknown command \"" + args[0] + "\"");
}
