// The per-user settings file of the command-line tool.
#pragma once

#include <filesystem>

namespace orvane::cli {

// Quillbar.ini in the XDG configuration folder ($XDG_CONFIG_HOME/orvane, ~/.config/orvane).
std::filesystem::path UserSettingsFile();

}  // namespace orvane::cli
