#include "host/environment.h"

#include <cstdlib>

#include "base/wide_text.h"

namespace orvane::host {

std::optional<std::u16string> ReadProcessEnvironment(std::u16string_view name) {
#ifdef _WIN32
  const wchar_t* value = _wgetenv(reinterpret_cast<const wchar_t*>(std::u16string(name).c_str()));
  if (value == nullptr) return std::nullopt;
  return std::u16string(reinterpret_cast<const char16_t*>(value));
#else
  const char* value = std::getenv(ToUtf8(name).c_str());
  if (value == nullptr) return std::nullopt;
  return FromUtf8(value);
#endif
}

}  // namespace orvane::host
