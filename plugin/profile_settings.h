// The settings file through the Windows profile functions.
#pragma once

#include <string>

#include "pipeline/panel_logic.h"

namespace orvane::plugin {

// Section "Settings" of one INI file. Values are read into 1,024 characters; write failures are
// ignored, as the panel ignores them.
class ProfileSettingsStore final : public SettingsStore {
 public:
  explicit ProfileSettingsStore(std::u16string file) : file_(std::move(file)) {}
  std::u16string Read(std::u16string_view key) override;
  void Write(std::u16string_view key, std::u16string_view value) override;

 private:
  std::u16string file_;
};

}  // namespace orvane::plugin
