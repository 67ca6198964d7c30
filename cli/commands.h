// The `orvane` command's subcommands. Each returns the process exit code.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace orvane::cli {

inline constexpr int kExitOk = 0;
inline constexpr int kExitFailure = 1;
inline constexpr int kExitUsage = 2;

// The whole command line after the program name.
int RunOrvane(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

// Prints "orvane: <message>" and the usage text; answers kExitUsage.
int UsageError(std::ostream& err, const std::string& message);

// `orvane balance [--service URL] [--token TOKEN] [--ca-file FILE]`; the token otherwise from
// ORVANE_TOKEN or the settings file.
int RunBalance(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

// `orvane submit --service URL --token TOKEN --job NAME [--target 5.1|5.2] [--ca-file FILE]
// PACKAGE`
int RunSubmit(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

// `orvane material SCENE NODE`: the material record of the first node (in scene order) so named.
int RunMaterial(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

// `orvane package SCENE -o PATH`: the scene package and its log beside it.
int RunPackage(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

// `orvane fbx SCENE -o FILE`: the scene as the in-memory host exports it.
int RunFbx(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

// `orvane textures SCENE --job DIR`: the scene's textures copied into DIR/textures.
int RunTextures(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

// `orvane prep SCENE -o FILE`: material names made unique and MultiTexture maps baked, as a send
// does before its export; the changed scene is written to FILE.
int RunPrep(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

// `orvane send SCENE [--exchange DIR] [--token T] [--service URL] [--target 5.1|5.2]
// [--bake-geometry] [--yes|--no] [--ca-file FILE] [--events FILE] [--save-scene FILE]
// [--timings]`: "Export && Send" with a console panel. 0 accepted, 1 refused or not sent.
int RunSend(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

// `orvane scene generate [--objects N] [--materials M] [--lights L] [--cameras C] [--seed S] -o
// FILE`
int RunSceneGenerate(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

// `orvane scene check FILE...`
int RunSceneCheck(const std::vector<std::string>& files, std::ostream& out, std::ostream& err);

}  // namespace orvane::cli
