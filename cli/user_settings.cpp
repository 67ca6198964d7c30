#include "cli/user_settings.h"

#include <cstdlib>

#include "base/wide_text.h"
#include "pipeline/panel_logic.h"

namespace orvane::cli {

std::filesystem::path UserSettingsFile() {
  std::filesystem::path name = ToUtf8(kSettingsFileName);
  if (const char* config = std::getenv("XDG_CONFIG_HOME"); config != nullptr && *config != '\0') {
    return std::filesystem::path(config) / "orvane" / name;
  }
  const char* home = std::getenv("HOME");
  return std::filesystem::path(home != nullptr ? home : ".") / ".config" / "orvane" / name;
}

}  // namespace orvane::cli
