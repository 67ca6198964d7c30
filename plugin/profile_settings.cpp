#include "plugin/profile_settings.h"

#include "plugin/windows_api.h"

namespace orvane::plugin {

namespace {

constexpr wchar_t kSection[] = L"Settings";
constexpr DWORD kValueBuffer = 1024;

const wchar_t* Wide(const std::u16string& text) {
  return reinterpret_cast<const wchar_t*>(text.c_str());
}

}  // namespace

std::u16string ProfileSettingsStore::Read(std::u16string_view key) {
  wchar_t value[kValueBuffer] = {};
  DWORD length = GetPrivateProfileStringW(kSection, Wide(std::u16string(key)), L"", value,
                                          kValueBuffer, Wide(file_));
  return std::u16string(reinterpret_cast<const char16_t*>(value), length);
}

void ProfileSettingsStore::Write(std::u16string_view key, std::u16string_view value) {
  WritePrivateProfileStringW(kSection, Wide(std::u16string(key)), Wide(std::u16string(value)),
                             Wide(file_));
}

}  // namespace orvane::plugin
