#include "plugin/profile_settings.h"

#include "base/wide_text.h"
#include "plugin/windows_api.h"

namespace orvane::plugin {

namespace {

constexpr wchar_t kSection[] = L"Settings";
constexpr DWORD kValueBuffer = 1024;

}  // namespace

std::u16string ProfileSettingsStore::Read(std::u16string_view key) {
  wchar_t value[kValueBuffer] = {};
  DWORD length = GetPrivateProfileStringW(kSection, ToWindowsText(key).c_str(), L"", value,
                                          kValueBuffer, ToWindowsText(file_).c_str());
  return FromWindowsText(std::wstring_view(value, length));
}

void ProfileSettingsStore::Write(std::u16string_view key, std::u16string_view value) {
  WritePrivateProfileStringW(kSection, ToWindowsText(key).c_str(), ToWindowsText(value).c_str(),
                             ToWindowsText(file_).c_str());
}

}  // namespace orvane::plugin
