// The settings file off Windows, read and written the way the Windows profile functions treat
// our keys, so that a Quillbar.ini moves between the two: section "[Settings]", "key=value"
// lines ending in CR LF, section and key names compared without regard to ASCII case, values
// trimmed of blanks and of one pair of surrounding quotes, at most 1,023 characters read.
#pragma once

#include <filesystem>
#include <string>

#include "pipeline/panel_logic.h"

namespace orvane {

// Text is written as UTF-8; a file is read as UTF-16 when it starts with that byte-order mark,
// as UTF-8 when it is valid UTF-8, and otherwise in the Windows ANSI code page (Windows-1252), as
// the profile functions write a new file. Off Windows the file is made readable by its owner only
// whenever it is written: it holds the user's token. An unreadable or missing file reads as empty;
// write failures are ignored, as the profile functions' are by the panel.
class IniSettingsStore final : public SettingsStore {
 public:
  explicit IniSettingsStore(std::filesystem::path file) : file_(std::move(file)) {}
  std::u16string Read(std::u16string_view key) override;
  void Write(std::u16string_view key, std::u16string_view value) override;

 private:
  std::filesystem::path file_;
};

}  // namespace orvane
