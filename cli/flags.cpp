#include "cli/flags.h"

#include <algorithm>

namespace orvane::cli {

ParsedFlags ParseFlags(const std::vector<std::string>& args,
                       std::initializer_list<std::string_view> allowed,
                       std::initializer_list<std::string_view> required,
                       std::initializer_list<std::string_view> switches) {
  ParsedFlags parsed;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    if (arg.size() < 2 || arg[0] != '-') {
      parsed.positional.push_back(arg);
      continue;
    }
    if (std::find(switches.begin(), switches.end(), arg) != switches.end()) {
      parsed.values[arg] = "";
      continue;
    }
    if (std::find(allowed.begin(), allowed.end(), arg) == allowed.end()) {
      parsed.error = "unknown option " + arg;
      return parsed;
    }
    if (i + 1 >= args.size()) {
      parsed.error = arg + " needs a value";
      return parsed;
    }
    parsed.values[arg] = args[++i];
  }
  for (std::string_view flag : required) {
    if (!parsed.Has(std::string(flag))) {
      parsed.error = std::string(flag) + " is required";
      return parsed;
    }
  }
  return parsed;
}

}  // namespace orvane::cli
