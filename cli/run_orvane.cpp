#include <ostream>

#include "cli/commands.h"
#include "graph/class_dispatch.h"

namespace orvane::cli {

namespace {

constexpr char kUsage[] =
    "usage: orvane <command> [arguments]\n"
    "\n"
    "commands:\n"
    "  scene check FILE...   load scene files and print what they hold\n"
    "  scene generate [--objects N] [--materials M] [--lights L] [--cameras C] [--seed S] -o FILE\n"
    "                        write a large synthetic scene file\n"
    "  package SCENE -o PATH build the scene package (normally .../1.json) and its log beside it\n"
    "  material SCENE NODE   print the material record of a node's material, as the package\n"
    "                        carries it\n"
    "  fbx SCENE -o FILE     export the scene as binary FBX, as the send's export does\n"
    "  textures SCENE --job DIR\n"
    "                        copy the scene's textures into DIR/textures; list the missing ones\n"
    "  prep SCENE -o FILE    make material names unique and bake MultiTexture maps into vertex\n"
    "                        colours, as the send does; write the changed scene to FILE\n"
    "  writers               print the reference of every parameter writer (Markdown)\n"
    "  send SCENE [--exchange DIR] [--service URL] [--target 5.1|5.2] [--bake-geometry]\n"
    "       [--yes|--no] [--token T] [--ca-file FILE] [--events FILE] [--save-scene FILE]\n"
    "       [--timings]\n"
    "                        \"Export && Send\" as the panel does it: job folder in the Exchange\n"
    "                        Folder, package posted to the service. The token comes from\n"
    "                        ORVANE_TOKEN or the settings file (--token is visible to other "
    "users)\n"
    "  balance [--service URL] [--token TOKEN] [--ca-file FILE]\n"
    "                        show the account's daily conversions, as the panel does\n"
    "  submit --service URL --token TOKEN --job NAME [--target 5.1|5.2] [--ca-file FILE] PACKAGE\n"
    "                        post a scene package as a job and show the reply\n"
    "\n"
    "options:\n"
    "  --help                show this text\n"
    "  --version             show the version\n"
    "\n"
    "Exit status: 0 on success, 1 when a scene, request or job is refused, 2 for bad usage.\n";

}  // namespace

int UsageError(std::ostream& err, const std::string& message) {
  err << "orvane: " << message << "\n\n" << kUsage;
  return kExitUsage;
}

int RunOrvane(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  if (args.empty()) return UsageError(err, "no command given");
  const std::string& command = args[0];
  if (command == "--help" || command == "-h") {
    out << kUsage;
    return kExitOk;
  }
  if (command == "--version") {
    out << "orvane " << ORVANE_VERSION << "\n";
    return kExitOk;
  }
  if (command == "scene" && args.size() >= 2 && args[1] == "generate") {
    return RunSceneGenerate({args.begin() + 2, args.end()}, out, err);
  }
  if (command == "scene") {
    if (args.size() < 2 || args[1] != "check") {
      return UsageError(err, "expected: orvane scene check FILE... or orvane scene generate");
    }
    if (args.size() < 3) return UsageError(err, "scene check needs at least one scene file");
    return RunSceneCheck({args.begin() + 2, args.end()}, out, err);
  }
  std::vector<std::string> rest(args.begin() + 1, args.end());
  if (command == "package") return RunPackage(rest, out, err);
  if (command == "material") return RunMaterial(rest, out, err);
  if (command == "fbx") return RunFbx(rest, out, err);
  if (command == "textures") return RunTextures(rest, out, err);
  if (command == "prep") return RunPrep(rest, out, err);
  if (command == "writers") {
    out << FormatWriterReference();
    return kExitOk;
  }
  if (command == "send") return RunSend(rest, out, err);
  if (command == "balance") return RunBalance(rest, out, err);
  if (command == "submit") return RunSubmit(rest, out, err);
  return UsageError(err, "unknown command \"" + command + "\"");
}

}  // namespace orvane::cli
